#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/Date.h"
#include "rules/ArtifactKind.h"
#include "rules/ArtifactReader.h"

namespace vostrel {

/// Holds a build folder against the lists that its tool keeps: what stands in none was put there by a person.
///
/// A list that cannot be read names nothing.
class ArtifactLists {
public:
    explicit ArtifactLists(ArtifactReader& from) : reader(from) {}

    /// Files that the tool can make again though they lie where anything may, and that nobody has changed: those that
    /// stand in its own list, and copies of the project's. Paths below the folder.
    [[nodiscard]] std::set<std::string> listedFiles(const std::string& folder, ArtifactKind kind);
    /// Whether a file is one of those, or the bytecode of one.
    [[nodiscard]] static bool isListed(const std::set<std::string>& files, const std::string& file);

    /// Names that copies of the project's files and folders may have directly in the folder.
    [[nodiscard]] std::set<std::string> namesOfCopies(const std::string& folder, ArtifactKind kind);

    /// When a tool was done, by the file that it writes last: what changed since then where nothing else writes, or was
    /// put there, a person changed.
    struct Installation {
        Date modified;
        Date arrived;

        [[nodiscard]] bool isOlderThan(const ArtifactContent& content) const;
    };
    /// Nothing where the tool leaves no such file.
    [[nodiscard]] std::optional<Installation> installation(const std::string& folder, ArtifactKind kind);
    /// Whether nothing but the installation writes into a folder of the build folder. `folder` is relative and empty
    /// or ends with "/".
    [[nodiscard]] static bool staysAsInstalled(std::string_view folder, ArtifactKind kind);

    /// Whether all stands in the tool's list that has to: packages, pods, checkouts, the sources of compiled modules,
    /// reports of tests, what makes up a bundle; and whether no archive is of another name or version than the rest.
    /// `listed` are the folder's `listedFiles`.
    [[nodiscard]] bool nameAll(const std::string& folder, ArtifactKind kind, const std::set<std::string>& listed);

private:
    [[nodiscard]] bool holdsListedPods(const std::string& folder);
    [[nodiscard]] std::vector<std::string> foldersOfSwiftPackages(const std::string& folder, ArtifactKind kind);
    [[nodiscard]] bool holdsCompiledSources(const std::string& folder);
    [[nodiscard]] bool holdsOneVersion(const std::string& archives);
    [[nodiscard]] bool holdsNamedArchives(const std::string& folder);
    [[nodiscard]] bool holdsReportsOfTests(const std::string& folder);
    void addCopies(const std::string& originals, const std::string& folder, const std::string& copies,
                   std::set<std::string>& files);

    ArtifactReader& reader;
};

}  // namespace vostrel
