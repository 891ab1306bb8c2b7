#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

#include "filesystem/WalkBudget.h"
#include "finder/FileDigesting.h"
#include "finder/FinderProgress.h"

namespace vostrel {

/// One stage of a comparison: digests many files with several workers.
///
/// Each file belongs to a class of those that it may equal; one whose class has shrunk to itself meanwhile is not read.
/// Results stand in the order of the jobs, whichever worker did them.
class DigestJobs {
public:
    /// In the pool.
    using Place = std::uint32_t;
    struct Job {
        Place entry = 0;
        /// The number of its class, from 0 on.
        Place kind = 0;
    };

    /// What it is given outlives the object. Jobs come in the order in which they are taken.
    DigestJobs(const FileDigesting& digester, DigestStage stage, const std::vector<DuplicatePoolEntry>& pool,
               std::vector<Job> jobs, const WalkBudget& budget);

    /// Runs all jobs, or as many as the budget allows. `progress` may be none.
    void run(int workers, FinderProgress::Stage shownStage, FinderProgressBox* progress);

    [[nodiscard]] const std::vector<Job>& all() const { return jobs; }
    /// Nothing for a job that was not needed or not reached.
    [[nodiscard]] const std::optional<DigestResult>& resultOf(std::size_t job) const { return results[job]; }
    /// Every job that was needed was done.
    [[nodiscard]] bool isFinished() const { return !isStopped; }

private:
    void work();
    [[nodiscard]] std::optional<std::size_t> takeNext();
    void put(std::size_t job, const DigestResult& result);
    /// Outside of the lock.
    void publish(const FinderProgress& progress);

    const FileDigesting& digester;
    DigestStage stage;
    const std::vector<DuplicatePoolEntry>& pool;
    const std::vector<Job> jobs;
    const WalkBudget& budget;

    std::mutex lock;  // guards all below
    std::size_t nextIndex = 0;
    bool isStopped = false;
    std::vector<std::optional<DigestResult>> results;
    /// Members of each class that may still equal another.
    std::vector<std::size_t> candidates;
    FinderProgress shown;
    FinderProgressBox* box = nullptr;
};

}  // namespace vostrel
