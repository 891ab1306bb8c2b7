#include "spacemap/SystemSpaceScanner.h"

#include <algorithm>
#include <utility>

#include "base/Checked.h"
#include "platform/SystemKind.h"

namespace vostrel {

std::optional<HiddenSpace> ScanResult::hidden(const SystemSpaceFigures& figures) const {
    if (!target.isVolume() || !capacity || tree.problem || tree.root().isMarker()) return std::nullopt;
    return HiddenSpace::of(tree.root(), *capacity, figures);
}

ScanResult SystemSpaceScanner::scan(const SpaceScanTarget& target, ScanProgressBox* progress,
                                    std::function<bool()> isCancelled) const {
    const Date start = clock();
    const auto root = pathOf(target);
    const SpaceMapAccess access = accessTo(target);
    const auto capacity = capacityAt(root);
    SpaceScanner scanner;
    scanner.walker = access.base().walker();
    scanner.walker.access = [access](const std::string& path) { return access.decision(path); };
    scanner.walker.lookedUp = lookedUp;
    scanner.walker.source = source;
    scanner.limits = limits;
    scanner.volumeRoots = mountsBeside(root).paths();

    const WalkBudget walkBudget{.deadline = start + budget, .isCancelled = std::move(isCancelled), .clock = clock};
    LinkSet links;
    SpaceTree tree = scanner.scan(root, target.title(), walkBudget, progress, links, start);
    return {std::move(tree), capacity, access.base().fullDiskAccess(), target};
}

SpaceMapAccess SystemSpaceScanner::accessTo(const SpaceScanTarget& target) const {
    const auto scope = target.isVolume() ? SpaceMapAccess::Scope::wholeDisk : SpaceMapAccess::Scope::folder;
    return {{home, fullDiskAccess.hasFullDiskAccess(), guards, mountsBeside(pathOf(target))}, scope};
}

Duration SystemSpaceScanner::waitLimit() const {
    return std::max(budget, Duration::zero()) + std::chrono::seconds(120);
}

std::filesystem::path SystemSpaceScanner::systemDiskRoot() {
    return systemKind() == SystemKind::macOS ? std::filesystem::path(SpaceTree::dataVolume) : "/";
}

std::filesystem::path SystemSpaceScanner::pathOf(const SpaceScanTarget& target) const {
    return target.isVolume() ? diskRoot : target.path();
}

MountTable SystemSpaceScanner::mountsBeside(const std::filesystem::path& root) const {
    const auto resolved = source->resolve(root);
    const auto form = PathForm::of(resolved ? std::filesystem::path(*resolved) : root);
    return form ? mounts().withoutThoseHolding(*form) : mounts();
}

std::optional<VolumeCapacity> SystemSpaceScanner::capacityAt(const std::filesystem::path& root) const {
    const auto read = capacityReader.read(root, ImportantFigure::included);
    if (!read) return std::nullopt;
    VolumeCapacity capacity = *read;
    if (const auto hint = purgeableHint(); hint && !capacity.availableImportant)
        capacity.availableImportant = saturatingAdd(capacity.availableNow, *hint);
    return capacity;
}

}  // namespace vostrel
