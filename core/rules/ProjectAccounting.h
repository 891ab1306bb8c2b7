#pragma once

#include <bitset>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "filesystem/WalkAccounting.h"
#include "rules/ArtifactRecognition.h"
#include "rules/ProjectScanner.h"

namespace vostrel {

/// What a walk for projects goes by. Everything referred to outlives the walk.
struct ProjectQuestions {
    const PathGuards& guards;
    const PathGuards::WalkRoot& root;
    /// The kinds that are wanted; all are recognised and looked past.
    std::set<ArtifactKind> kinds;
    /// How deep build folders are looked for.
    std::size_t searchDepth = 0;
    /// How deep the walked folder's own sources are read even if nothing marks it as a project.
    std::size_t sourceDepth = 0;
    /// Folders whose own dates do not count.
    std::set<std::filesystem::path> undated;
    std::function<void(std::string_view folder)> watcher;
};

/// What one folder's listing says of the projects around it.
class ProjectNotes final : public FolderNotes {
public:
    using Kinds = std::bitset<artifactKinds.size()>;

    void entry(const FolderEntry& entry) override;
    void subfolder(std::string_view name) override;
    void clear() override { *this = {}; }

    /// The folder, relative to the one that is walked.
    std::string path;
    /// Whether build folders inside it belong to a project: it lies in no package and in no folder of their names.
    bool searches = true;
    /// How deep the sources of the projects around it reach.
    std::size_t reach = 0;

    Date newest = Date::distantPast();
    ArtifactMarkers markers;
    /// Kinds whose names links, or mounts, have here.
    Kinds links;
    Kinds mounts;
    bool holdsMount = false;
    /// One file that could not be looked at.
    std::optional<std::string> unreadableFile;
};

/// Finds build folders and dates the projects around them.
class ProjectAccounting final : public WalkAccounting {
public:
    ProjectAccounting(const ProjectQuestions& forWhat, ArtifactRecognition& recognition,
                      ProjectScanner::Discovery& into)
        : questions(forWhat), recognising(recognition), found(into) {}

    [[nodiscard]] std::unique_ptr<FolderNotes> makeNotes() const override { return std::make_unique<ProjectNotes>(); }
    void prepare(const WalkedFolder& folder, const FolderNotes* parent, FolderNotes& notes) override;
    WalkDecision decide(const WalkedFolder& folder, const FolderNotes& around) override;
    void leftOut(const WalkedFolder& folder, WalkDecision decision) override;
    void tooDeep(const WalkedFolder& /*folder*/) override {}
    void couldNotOpen(const WalkedFolder& folder, int error) override;
    void onOtherVolume(const WalkedFolder& folder) override;
    void notReached(const WalkedFolder& folder) override;
    void listed(const WalkedFolder& folder, const FileStatus& status, FolderNotes& notes, ListingEnd end,
                int error) override;
    void finished(const WalkedFolder& folder, bool stopped) override;

    /// The newest source of the walked folder, once it is finished; nothing when not all of it could be read.
    [[nodiscard]] std::optional<Date> newestOfAll() const { return newestOfRoot; }

private:
    /// A folder on the way from the root to where the walk is. Any may turn out to be a project.
    struct Level {
        FileIdentity identity;
        std::string path;
        std::string relativePath;
        std::size_t depth = 0;
        bool searches = true;
        bool isPythonProject = false;
        Date newest = Date::distantPast();
        /// Why its newest source is not known.
        std::optional<SkipReason> trouble;
        std::vector<ProjectScanner::Candidate> candidates;
    };

    [[nodiscard]] std::size_t reachBelow(const ProjectNotes& notes, std::size_t depth) const;
    /// The wanted kind that a folder or link of this name, directly in the folder of the last level, could be.
    [[nodiscard]] std::optional<ArtifactKind> wantedKind(std::string_view name, std::size_t depth) const;
    void leaveOut(std::string_view path, SkipReason reason, std::optional<std::string> refusal = {});
    void leaveOutUnrecognised(std::string_view path);
    void leaveOut(const Level& level, ProjectNotes::Kinds kinds, SkipReason reason);
    void addCandidate(const WalkedFolder& folder, ArtifactKind kind);
    /// The folders whose sources lie so deep.
    template <class Action>
    void forEachProjectAround(std::size_t depth, Action action);
    void spoil(std::size_t depth, SkipReason reason);
    void spoilUnreadable(std::size_t depth, std::filesystem::path path);

    const ProjectQuestions& questions;
    ArtifactRecognition& recognising;
    ProjectScanner::Discovery& found;
    /// Recognised ahead of the walk's order.
    std::unordered_map<std::string, FileIdentity> recognised;
    /// Folders of which that could not be told, and why.
    std::unordered_map<std::string, SkipReason> undecided;
    std::vector<Level> levels;
    std::optional<Date> newestOfRoot;
};

}  // namespace vostrel
