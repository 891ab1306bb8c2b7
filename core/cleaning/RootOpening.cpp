#include "cleaning/RootOpening.h"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "base/SystemError.h"
#include "base/Visit.h"
#include "filesystem/PathForm.h"
#include "platform/CloudState.h"
#include "platform/FolderOpening.h"
#include "platform/OwnedDescriptor.h"
#include "rules/PresetCatalog.h"
#include "rules/PresetLimits.h"
#include "rules/RuleSentences.h"

namespace vostrel {

namespace {

using Kind = PlanError::Kind;

constexpr const char* presetFoldersOverlap =
    "The folders of this preset are inside one another here, so Vostrel will not clean them.";
constexpr const char* presetDatesMissing =
    "This disk does not record when files were added or opened, and this preset goes by that, so Vostrel leaves its "
    "items alone.";

PlanError errorOf(const ResolveError& error) {
    switch (error.kind) {
        case ResolveError::Kind::rootMissing:
            return {Kind::rootMissing, error.sentence};
        case ResolveError::Kind::rootUnreadable:
            return {Kind::rootUnreadable, error.sentence};
        case ResolveError::Kind::settingUnreadable:
            return {Kind::settingUnreadable, error.sentence};
        case ResolveError::Kind::protectedRoot:
            return {Kind::protectedRoot, error.sentence};
        case ResolveError::Kind::presetUnknown:
            return {Kind::presetUnknown, error.sentence};
    }
    return PlanError::of(Kind::rootMissing);
}

PlanError errorOfMissing(int code) {
    return PlanError::of(isMissing(code) ? Kind::rootMissing : Kind::rootUnreadable);
}

std::optional<PlanError> presetProblem(const Rule& rule, const Preset* preset) {
    if (!preset) return PlanError::of(Kind::presetUnknown);
    if (auto problem = presetActionProblem(rule.action, *preset)) return PlanError{Kind::actionNotAllowed, *problem};
    if (auto problem = presetFilterProblem(rule.filter, *preset)) return PlanError{Kind::filterNotAllowed, *problem};
    return std::nullopt;
}

std::optional<PlanError> projectScanProblem(const ProjectScanTarget& scan, const RuleFilter& filter) {
    if (filter.picksByAgeSizeOrName()) return PlanError{Kind::filterNotAllowed, sentences::projectScanHasNoFilters};
    if (scan.kinds.empty()) return PlanError{Kind::filterNotAllowed, sentences::noKindOfBuildFolder};
    if (!scan.hasValidDays()) return PlanError{Kind::filterNotAllowed, sentences::untouchedDaysOutOfRange};
    return std::nullopt;
}

bool isSameFolder(const FileStatus& left, const FileStatus& right) {
    return left.type == right.type && left.device == right.device && left.inode == right.inode &&
           left.mount == right.mount;
}

bool overlap(const PlanRoot& left, const PlanRoot& right) {
    if (left.identity == right.identity) return true;
    const auto leftForm = PathForm::of(left.url);
    const auto rightForm = PathForm::of(right.url);
    return !leftForm || !rightForm || leftForm->contains(*rightForm) || rightForm->contains(*leftForm);
}

}  // namespace

bool OpenedRoot::isStillThere() const {
    const auto now = statusOfPath(root.url);
    return now && isSameFolder(*now, status);
}

std::expected<std::vector<OpenedRoot>, PlanError> RootOpening::open(const Rule& rule, const PresetCatalog& catalog,
                                                                    const std::function<bool()>& isCancelled) const {
    const auto mustStop = [&] { return isCancelled && isCancelled(); };
    if (mustStop()) return std::unexpected(PlanError::of(Kind::cancelled));
    const auto resolved = resolve(rule, catalog);
    if (!resolved) return std::unexpected(resolved.error());
    const Preset* preset = catalog.presetOf(rule.target);
    std::vector<OpenedRoot> roots;
    for (const auto& root : *resolved) {
        if (mustStop()) return std::unexpected(PlanError::of(Kind::cancelled));
        auto opened = open(root, rule, preset);
        if (!opened && preset && opened.error().kind == Kind::rootMissing) continue;
        if (!opened) return std::unexpected(std::move(opened.error()));
        const auto isThisFolder = [&](const OpenedRoot& other) { return other.root.identity == opened->root.identity; };
        if (preset && std::ranges::any_of(roots, isThisFolder)) continue;
        const auto overlaps = [&](const OpenedRoot& other) { return overlap(other.root, opened->root); };
        if (std::ranges::any_of(roots, overlaps))
            return std::unexpected(preset ? PlanError{Kind::overlappingRoots, presetFoldersOverlap}
                                          : PlanError::of(Kind::overlappingRoots));
        roots.push_back(std::move(*opened));
    }
    if (roots.empty()) return std::unexpected(PlanError::of(preset ? Kind::presetNotFound : Kind::rootMissing));
    return roots;
}

std::expected<std::vector<ResolvedRoot>, PlanError> RootOpening::resolve(const Rule& rule,
                                                                         const PresetCatalog& catalog) const {
    const auto unplanned = visit(
        rule.target, [](const FolderTarget&) { return std::optional<PlanError>{}; },
        [&](const PresetTarget& target) { return presetProblem(rule, catalog.preset(target.id)); },
        [&](const ProjectScanTarget& scan) { return projectScanProblem(scan, rule.filter); });
    if (unplanned) return std::unexpected(*unplanned);
    auto roots = resolver.resolve(rule.target, catalog);
    if (!roots) return std::unexpected(errorOf(roots.error()));
    return *std::move(roots);
}

std::expected<OpenedRoot, PlanError> RootOpening::open(const ResolvedRoot& resolved, const Rule& rule,
                                                       const Preset* preset) const {
    std::error_code failure;
    const auto real = std::filesystem::canonical(resolved.url, failure);
    if (failure) return std::unexpected(errorOfMissing(failure.value()));
    const auto before = statusOfPath(real);
    if (!before) return std::unexpected(errorOfMissing(before.error()));
    if (before->type != EntryType::folder) return std::unexpected(PlanError::of(Kind::rootNotDirectory));

    const OwnedDescriptor folder(openFolder(real));
    if (!folder.isOpen()) return std::unexpected(errorOfMissing(errno));
    OpenedRoot opened;
    opened.root.url = real;
    opened.root.given = resolved.url;
    opened.root.exception = resolved.exception;
    opened.root.setting = resolved.setting;
    opened.root.screenshotFolder = resolved.screenshotFolder;
    // Asked again: a folder on the way may have become a link since the target was resolved.
    opened.root.linkedAtPlanning = resolved.linked || resolver.isLinked(resolved.url);
    opened.root.trashOnly = resolved.trashOnly || opened.root.linkedAtPlanning;
    opened.root.iCloudAtPlanning = isInCloudStorage(real);
    if (auto error = identify(folder.get(), opened)) return std::unexpected(*std::move(error));
    if (auto error = refuse(resolved, opened, rule)) return std::unexpected(*std::move(error));
    const bool isTheSame = isSameFolder(*before, opened.status) && opened.isStillThere();
    if (!isTheSame) return std::unexpected(PlanError::of(Kind::rootChanged));
    opened.root.datedByTrashInfo = resolved.datedByTrashInfo;
    if (auto error = checkDates(folder.get(), rule, preset, opened)) return std::unexpected(*std::move(error));
    return opened;
}

std::optional<PlanError> RootOpening::identify(int openFolder, OpenedRoot& opened) const {
    const auto status = statusOfOpen(openFolder);
    if (!status) return PlanError::of(Kind::rootUnreadable);
    opened.status = *status;
    const auto uuid = volume.volumeUUID(openFolder);
    if (!uuid) return PlanError::of(Kind::rootHasNoVolumeUUID);
    opened.root.identity = {*uuid, status->inode};
    return std::nullopt;
}

std::optional<PlanError> RootOpening::refuse(const ResolvedRoot& resolved, const OpenedRoot& opened,
                                             const Rule& rule) const {
    for (const auto& path : {resolved.url, opened.root.url}) {
        if (auto refusal = guards.refusalForRoot(path, resolved.exception)) {
            return PlanError{Kind::protectedRoot, *std::move(refusal)};
        }
    }
    if (resolved.mustBeOwnedByUser) {
        if (auto refusal = resolver.ownershipRefusal(resolved.url, opened.status)) {
            return PlanError{Kind::folderNotTrusted, *std::move(refusal)};
        }
    }
    ResolvedRoot asOpened = resolved;
    asOpened.linked = opened.root.linkedAtPlanning;
    asOpened.trashOnly = opened.root.trashOnly;
    if (auto problem = rootActionProblem(rule.action, asOpened, guards.displayPath(resolved.url))) {
        return PlanError{Kind::actionNotAllowed, *std::move(problem)};
    }
    return std::nullopt;
}

std::optional<PlanError> RootOpening::checkDates(int openFolder, const Rule& rule, const Preset* preset,
                                                 OpenedRoot& opened) const {
    const std::string type = volume.fileSystemType(openFolder).value_or("");
    opened.recordsAddedDates = recordsAddedDates(type);
    const auto keeps = [&](AgeBasis basis) {
        return basis == AgeBasis::modified || (basis == AgeBasis::added && opened.recordsAddedDates) ||
               (basis == AgeBasis::lastOpened && recordsLastUsedDates(type, volume.accessTimes(openFolder)));
    };
    if (preset && !keeps(preset->ageBasis)) return PlanError{Kind::basisUnsupportedOnThisDisk, presetDatesMissing};
    const bool isScan = std::holds_alternative<ProjectScanTarget>(rule.target);
    if (!isScan && !keeps(rule.filter.ageBasis)) return PlanError::of(Kind::basisUnsupportedOnThisDisk);
    return std::nullopt;
}

}  // namespace vostrel
