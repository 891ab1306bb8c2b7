#pragma once

#include <expected>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cleaning/PlanError.h"
#include "filesystem/AgeBasis.h"
#include "filesystem/PathGuards.h"
#include "platform/FileStatus.h"
#include "platform/VolumeFacts.h"
#include "rules/CleanupPlan.h"
#include "rules/ResolvedRoot.h"
#include "rules/Rule.h"
#include "rules/TargetResolver.h"

namespace vostrel {

/// What is asked of a root's volume, each by the open root folder.
struct VolumeQuestions {
    std::function<std::optional<std::string>(int openFolder)> volumeUUID = &vostrel::volumeUUID;
    std::function<std::optional<std::string>(int openFolder)> fileSystemType = &vostrel::fileSystemType;
    std::function<AccessTimes(int openFolder)> accessTimes = &vostrel::accessTimes;
};

/// A root that passed every check, as it was found.
struct OpenedRoot {
    PlanRoot root;
    FileStatus status;
    /// Whether its disk records when items arrive in their folders.
    bool recordsAddedDates = false;

    /// Whether the folder at the root's path is still this one.
    [[nodiscard]] bool isStillThere() const;
};

/// Opens the folders that a rule cleans and checks each, in this order: it exists, is a folder, can be read, has a
/// volume UUID, is not protected, belongs to the user alone, stayed the same meanwhile, and its disk keeps the dates
/// that the rule goes by. All of it is asked of one open descriptor, so nothing can be swapped between two checks.
class RootOpening {
public:
    /// All of them outlive the object.
    RootOpening(const PathGuards& pathGuards, const TargetResolver& targetResolver, const VolumeQuestions& questions)
        : guards(pathGuards), resolver(targetResolver), volume(questions) {}

    /// All roots of the rule, in the target's order, none inside another; of a preset, those that exist, each once.
    /// `isCancelled` is asked before each.
    [[nodiscard]] std::expected<std::vector<OpenedRoot>, PlanError> open(
        const Rule& rule, const PresetCatalog& catalog, const std::function<bool()>& isCancelled = {}) const;

private:
    [[nodiscard]] std::expected<std::vector<ResolvedRoot>, PlanError> resolve(const Rule& rule,
                                                                              const PresetCatalog& catalog) const;
    [[nodiscard]] std::expected<OpenedRoot, PlanError> open(const ResolvedRoot& resolved, const Rule& rule,
                                                            const Preset* preset) const;
    [[nodiscard]] std::optional<PlanError> identify(int openFolder, OpenedRoot& opened) const;
    [[nodiscard]] std::optional<PlanError> refuse(const ResolvedRoot& resolved, const OpenedRoot& opened,
                                                  const Rule& rule) const;
    /// Whether the disk keeps the dates that the rule and its preset go by; a project scan goes by none.
    [[nodiscard]] std::optional<PlanError> checkDates(int openFolder, const Rule& rule, const Preset* preset,
                                                      OpenedRoot& opened) const;

    const PathGuards& guards;
    const TargetResolver& resolver;
    const VolumeQuestions& volume;
};

}  // namespace vostrel
