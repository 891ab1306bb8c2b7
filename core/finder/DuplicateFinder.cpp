#include "finder/DuplicateFinder.h"

#include <algorithm>
#include <set>
#include <tuple>
#include <utility>

#include "finder/DigestJobs.h"

namespace vostrel {

namespace {

using Place = DigestJobs::Place;
/// Candidates that nothing read so far tells apart.
using Alike = std::vector<Place>;

/// One comparison.
class Comparison {
public:
    Comparison(const DuplicateFinder& ofFinder, std::vector<DuplicatePoolEntry> candidates, FinderProgressBox* box,
               const WalkBudget& inTime)
        : finder(ofFinder), pool(std::move(candidates)), progress(box), budget(inTime) {}

    DuplicateOutcome run() {
        auto classes = bySize();
        outcome.finished = true;
        const auto isLong = [](std::int64_t size) { return size > FileHasher::firstBlockBytes; };
        divide(classes, DigestStage::firstBlock, [](std::int64_t) { return true; });
        // Files that agree at their beginning and at their end mostly agree altogether.
        divide(classes, DigestStage::lastBlock, isLong);
        divide(classes, DigestStage::whole, isLong);
        for (const auto& alike : classes)
            addGroup(alike);
        std::ranges::sort(outcome.groups, std::less(), [](const DuplicateGroup& group) {
            return std::tuple(-group.reclaimableBytes(), group.copies.front().path);
        });
        std::size_t id = 0;
        for (DuplicateGroup& group : outcome.groups) {
            for (DuplicateCopy& copy : group.copies)
                copy.id = id++;
        }
        return std::move(outcome);
    }

private:
    struct Class {
        Alike members;
        /// Of all the bytes that were read of each.
        SHA256Digest digest;
    };

    [[nodiscard]] const FinderStamp& stampOf(Place place) const { return pool[place].stamp; }

    /// Those of one size of which there are several, each in a space of its own.
    [[nodiscard]] std::vector<Class> bySize() {
        const std::int64_t least = std::max<std::int64_t>(finder.limits.minBytes, 1);  // nothing is no copy of nothing
        std::vector<Place> places;
        for (std::size_t index = 0; index < pool.size(); ++index) {
            if (pool[index].stamp.size >= least) places.push_back(static_cast<Place>(index));
        }
        std::ranges::sort(places, std::less(), [&](Place place) { return std::pair(stampOf(place).size, place); });
        std::vector<Class> classes;
        for (auto at = places.begin(); at != places.end();) {
            const auto size = stampOf(*at).size;
            const auto end = std::find_if(at, places.end(), [&](Place place) { return stampOf(place).size != size; });
            if (end - at > 1) keepIfSeveral(classes, {withoutICloud(withoutShared({at, end})), {}});
            at = end;
        }
        return classes;
    }

    static void keepIfSeveral(std::vector<Class>& classes, Class alike) {
        if (alike.members.size() > 1) classes.push_back(std::move(alike));
    }

    /// One of each space.
    [[nodiscard]] Alike withoutShared(const Alike& sameSize) {
        const auto asFile = [&](Place place) { return stampOf(place).identity(); };
        // By another mount, or in a snapshot, a file has another device and is the same to the nanosecond.
        const auto asSeenElsewhere = [&](Place place) {
            const FinderStamp& stamp = stampOf(place);
            return std::tuple(stamp.inode, stamp.modified, stamp.changed);
        };
        const auto asClone = [&](Place place) {
            const FinderStamp& stamp = stampOf(place);
            const bool mayShare = stamp.mayShareSpace();
            return std::tuple(stamp.device, mayShare, mayShare ? *stamp.cloneID : place);
        };
        return oneOfEach(oneOfEach(oneOfEach(sameSize, asFile), asSeenElsewhere), asClone);
    }

    /// The first of those with the same key.
    template <class Key>
    [[nodiscard]] Alike oneOfEach(Alike places, const Key& keyOf) {
        std::ranges::sort(places, std::less(), [&](Place place) { return std::pair(keyOf(place), place); });
        const auto shared = std::ranges::unique(places, std::equal_to(), keyOf);
        outcome.sharedSpaceFiles += std::ssize(shared);
        places.erase(shared.begin(), shared.end());
        std::ranges::sort(places);
        return places;
    }

    [[nodiscard]] Alike withoutICloud(Alike candidates) {
        if (candidates.size() < 2) return candidates;
        std::erase_if(candidates, [&](Place place) {
            const auto isInICloud = finder.isInICloud(pool[place].path.full());
            if (!isInICloud) ++outcome.couldNotCheckICloud;
            if (isInICloud == true) ++outcome.inICloud;
            return isInICloud != false;
        });
        return candidates;
    }

    /// Tells the members of each class apart by one more digest, of those classes whose size wants it.
    void divide(std::vector<Class>& classes, DigestStage stage, const std::function<bool(std::int64_t)>& isWanted) {
        std::vector<Class> divided;
        std::vector<DigestJobs::Job> jobs;
        Place kinds = 0;
        for (Class& alike : classes) {
            if (!isWanted(stampOf(alike.members.front()).size)) {
                divided.push_back(std::move(alike));
                continue;
            }
            for (const Place place : alike.members)
                jobs.push_back({.entry = place, .kind = kinds});
            ++kinds;
        }
        // As they lie on the disk, as far as their numbers tell, so that it reads forward; but nothing waits for the
        // longest.
        std::ranges::sort(jobs, std::less(), [&](const DigestJobs::Job& job) {
            constexpr std::int64_t longFile = 4'000'000'000;
            const FinderStamp& stamp = stampOf(job.entry);
            return std::tuple(std::max(stamp.size, longFile), stamp.identity(), job.entry);
        });
        DigestJobs work(finder.digester, stage, pool, std::move(jobs), budget);
        const auto shownStage =
            stage == DigestStage::firstBlock ? FinderProgress::Stage::firstBlocks : FinderProgress::Stage::wholeFiles;
        if (outcome.finished) work.run(finder.limits.workers, shownStage, progress);
        outcome.finished = outcome.finished && work.isFinished();
        collect(work, kinds, divided);
        classes = std::move(divided);
    }

    /// The classes that the digests make of those before. One of which something was not reached is not whole.
    void collect(const DigestJobs& work, std::size_t kinds, std::vector<Class>& divided) {
        struct Digested {
            SHA256Digest digest;
            Place place = 0;

            auto operator<=>(const Digested&) const = default;
        };
        std::vector<std::vector<Digested>> digested(kinds);
        std::vector<bool> isWhole(kinds, true);
        for (std::size_t index = 0; index < work.all().size(); ++index) {
            const auto& [entry, kind] = work.all()[index];
            const auto& result = work.resultOf(index);
            if (!result) {
                isWhole[kind] = false;
            } else if (result->kind == DigestResult::Kind::digest) {
                digested[kind].push_back({result->digest, entry});
            } else {
                ++outcome.changedOrUnreadable;
            }
        }
        for (std::size_t kind = 0; kind < kinds; ++kind) {
            if (!isWhole[kind]) continue;
            auto& members = digested[kind];
            std::ranges::sort(members);
            for (auto at = members.begin(); at != members.end();) {
                const auto end =
                    std::find_if(at, members.end(), [&](const Digested& other) { return other.digest != at->digest; });
                Class alike{{}, at->digest};
                for (; at != end; ++at)
                    alike.members.push_back(at->place);
                keepIfSeveral(divided, std::move(alike));
            }
        }
    }

    void addGroup(const Class& alike) {
        DuplicateGroup group{.digest = alike.digest.text(), .size = stampOf(alike.members.front()).size, .copies = {}};
        std::set<SHA256Digest> blocks;
        for (const Place place : alike.members) {
            const auto path = pool[place].path.full();
            const auto shared = finder.sharedBlocks ? finder.sharedBlocks(path) : std::nullopt;
            if (shared && !blocks.insert(*shared).second) {
                ++outcome.sharedSpaceFiles;
            } else {
                const bool mayVanish = finder.mayVanish && finder.mayVanish(path);
                group.copies.push_back({0, pool[place].path, stampOf(place), finder.trashBlock(path), mayVanish});
            }
        }
        if (group.copies.size() < 2) return;
        std::ranges::sort(group.copies, std::less(), [](const DuplicateCopy& copy) {
            return std::tuple(copy.mayVanish, copy.stamp.modified, copy.path.length(), copy.path);
        });
        outcome.groups.push_back(std::move(group));
    }

    const DuplicateFinder& finder;
    const std::vector<DuplicatePoolEntry> pool;
    FinderProgressBox* progress;
    const WalkBudget& budget;
    DuplicateOutcome outcome;
};

}  // namespace

DuplicateOutcome DuplicateFinder::find(std::vector<DuplicatePoolEntry> pool, FinderProgressBox* progress,
                                       const WalkBudget& budget) const {
    return Comparison(*this, std::move(pool), progress, budget).run();
}

}  // namespace vostrel
