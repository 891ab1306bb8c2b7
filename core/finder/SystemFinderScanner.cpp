#include "finder/SystemFinderScanner.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <tuple>
#include <utility>

#include "finder/DuplicateFinder.h"
#include "finder/FinderPlaces.h"
#include "platform/CloudState.h"
#include "platform/LastUsed.h"
#include "platform/SharedBlocks.h"
#include "platform/SystemKind.h"
#include "platform/UncachedReading.h"

namespace vostrel {

namespace {

namespace fs = std::filesystem;

Duration seconds(double count) {
    return std::chrono::duration_cast<Duration>(std::chrono::duration<double>(count));
}

/// Why files may not be moved to the Trash: what they are called and where they lie, or where the search began.
class TrashBlocks {
public:
    TrashBlocks(const PathGuards& ofUser, fs::path ofHome, const std::vector<FinderRootState>& states)
        : guards(ofUser), home(std::move(ofHome)) {
        for (const FinderRootState& state : states) {
            const auto* root = std::get_if<FinderRootInfo>(&state);
            if (root == nullptr) continue;
            if (const auto block = finder_places::blockForRoot(root->path, home)) roots.emplace(root->path, *block);
        }
    }

    [[nodiscard]] std::optional<std::string> of(const fs::path& file) const {
        if (auto refusal = guards.refusalForItem(file)) return refusal;
        if (const auto* block = ofRootOf(file)) return std::string(*block);
        return std::nullopt;
    }

    /// Whether the file may be gone tomorrow without anybody's asking.
    [[nodiscard]] bool mayVanish(const fs::path& file) const {
        return ofRootOf(file) != nullptr || finder_places::mayVanishIn(file.parent_path(), home);
    }

private:
    [[nodiscard]] const std::string_view* ofRootOf(const fs::path& file) const {
        if (roots.empty()) return nullptr;
        for (fs::path folder = file.parent_path(); folder.has_relative_path(); folder = folder.parent_path()) {
            if (const auto root = roots.find(folder.native()); root != roots.end()) return &root->second;
        }
        return nullptr;
    }

    const PathGuards& guards;
    fs::path home;
    std::map<std::string, std::string_view> roots;
};

std::optional<SHA256Digest> sharedBlocksAt(const fs::path& path) {
    const OwnedDescriptor file = openForReading(path);
    return file.isOpen() ? sharedBlocks(file.get()) : std::nullopt;
}

bool isLarger(const FinderFile& left, const FinderFile& right) {
    return std::tuple(-left.stamp.allocated, left.path) < std::tuple(-right.stamp.allocated, right.path);
}

/// One search.
class Search {
public:
    Search(const SystemFinderScanner& with, const FinderRequest& request, FinderProgressBox* box,
           const std::function<bool()>& isCancelled)
        : scanner(with), progress(box), cancelTest(isCancelled) {
        result.request = request;
    }

    FinderResult run(const FinderWalker& walker) {
        const Date start = scanner.clock();
        LinkSet links;
        result.fullDiskAccess = walker.walker.fullDiskAccess;
        result.walk = walker.walk(result.request.roots, result.request.now, budgetOf(scanner.limits.walkSeconds),
                                  progress, links);
        blocks = std::make_unique<const TrashBlocks>(scanner.guards, scanner.home, result.walk.roots);
        listLarge();
        listOld(walker);
        compare();
        result.duration = std::chrono::duration<double>(scanner.clock() - start).count();
        const bool isComplete = !result.walk.stopped && result.oldNotChecked == 0 && result.duplicates.finished;
        if (!isComplete)
            result.ending = isCancelled() ? FinderResult::Ending::cancelled : FinderResult::Ending::deadline;
        return std::move(result);
    }

private:
    [[nodiscard]] bool isCancelled() const { return cancelTest && cancelTest(); }
    [[nodiscard]] WalkBudget budgetOf(double limit) const {
        return {.deadline = scanner.clock() + seconds(limit), .isCancelled = cancelTest, .clock = scanner.clock};
    }
    [[nodiscard]] FinderFile listed(const WalkedFile& file, const std::optional<LastOpened>& lastOpened) const {
        return {file.path, file.stamp, lastOpened, blocks->of(file.path.full())};
    }

    void listLarge() {
        for (const WalkedFile& file : std::exchange(result.walk.large, {}))
            result.large.push_back(listed(file, {}));
        std::ranges::sort(result.large, isLarger);
    }

    void listOld(const FinderWalker& walker) {
        const auto candidates = std::exchange(result.walk.oldCandidates, {});
        const Date cutoff = walker.criteria.oldCutoff(result.request.now, walker.calendar);
        const WalkBudget budget = budgetOf(scanner.limits.datesSeconds);
        FinderProgress shown;
        shown.stage = FinderProgress::Stage::dates;
        shown.total = std::ssize(candidates);
        for (const WalkedFile& file : candidates) {
            if (budget.isSpent()) {
                result.oldNotChecked = shown.total - shown.done;
                break;
            }
            if (progress != nullptr) progress->set(shown);
            const LastOpened lastOpened = lastOpenedOf(file);
            if (lastOpened.date < cutoff) result.old.push_back(listed(file, lastOpened));
            ++shown.done;
        }
        std::ranges::sort(result.old, isLarger);
        if (result.old.size() > scanner.limits.maxListed) result.old.resize(scanner.limits.maxListed);
    }

    [[nodiscard]] LastOpened lastOpenedOf(const WalkedFile& file) const {
        if (const auto used = scanner.lastUsed(file.path.full())) return {*used, LastOpened::Source::spotlight};
        return {file.newestDate(), LastOpened::Source::modifiedOrAdded};
    }

    void compare() {
        const DuplicateFinder finder{
            .digester = *scanner.digester,
            .limits = {.minBytes = result.request.criteria.duplicateMinBytes, .workers = scanner.limits.hashWorkers},
            .isInICloud = scanner.isInICloud,
            .trashBlock = [this](const fs::path& file) { return blocks->of(file); },
            .mayVanish = [this](const fs::path& file) { return blocks->mayVanish(file); },
            .sharedBlocks = &sharedBlocksAt};
        result.duplicates =
            finder.find(std::exchange(result.walk.pool, {}), progress, budgetOf(scanner.limits.compareSeconds));
        result.groups = std::exchange(result.duplicates.groups, {});
    }

    const SystemFinderScanner& scanner;
    FinderProgressBox* progress;
    const std::function<bool()>& cancelTest;
    FinderResult result;
    std::unique_ptr<const TrashBlocks> blocks;
};

}  // namespace

FinderResult SystemFinderScanner::scan(const FinderRequest& request, FinderProgressBox* progress,
                                       const std::function<bool()>& isCancelled) const {
    return Search(*this, request, progress, isCancelled).run(walkerFor(request));
}

FinderWalker SystemFinderScanner::walkerFor(const FinderRequest& request) const {
    MountTable others = mounts();
    for (const std::string& root : request.roots) {
        const auto resolved = opener->resolve(root);
        if (const auto form = PathForm::of(resolved ? *resolved : root)) others = others.withoutThoseHolding(*form);
    }
    const SnapshotAccess snapshotAccess(home, fullDiskAccess.hasFullDiskAccess(), guards, others);
    FinderWalker walker{.walker = snapshotAccess.walker(),
                        .access = FinderAccess::inHome({snapshotAccess, SpaceMapAccess::Scope::folder}),
                        .criteria = request.criteria,
                        .limits = limits,
                        .volumeRoots = others.paths(),
                        .calendar = {}};
    walker.walker.source = opener;
    walker.walker.lookedUp = lookedUp;
    return walker;
}

std::optional<Date> SystemFinderScanner::recordedLastUse(const fs::path& file) {
    // On Linux access dates tell of reading, by backups and searches as well, not of use.
    if (systemKind() != SystemKind::macOS) return std::nullopt;
    return lastUsedDate(file, Date::distantPast());
}

std::optional<bool> SystemFinderScanner::isKeptInICloud(const fs::path& file) {
    return isInCloudStorage(file);
}

}  // namespace vostrel
