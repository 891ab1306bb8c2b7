#include "finder/DigestJobs.h"

#include <algorithm>
#include <system_error>
#include <thread>
#include <utility>

#include "base/Checked.h"

namespace vostrel {

DigestJobs::DigestJobs(const FileDigesting& with, DigestStage wanted, const std::vector<DuplicatePoolEntry>& from,
                       std::vector<Job> inOrder, const WalkBudget& inTime)
    : digester(with), stage(wanted), pool(from), jobs(std::move(inOrder)), budget(inTime), results(jobs.size()) {
    for (const Job& job : jobs) {
        if (job.kind >= candidates.size()) candidates.resize(job.kind + 1);
        ++candidates[job.kind];
    }
}

void DigestJobs::run(int workers, FinderProgress::Stage shownStage, FinderProgressBox* progress) {
    box = progress;
    shown.stage = shownStage;
    shown.total = static_cast<std::int64_t>(jobs.size());
    for (const Job& job : jobs) {
        const auto length = FileDigesting::rangeOf(stage, pool[job.entry].stamp.size).length;
        shown.bytesTotal = saturatingAdd(shown.bytesTotal, length);
    }
    publish(shown);
    std::vector<std::jthread> others;
    try {
        for (int worker = 1; worker < std::min(workers, static_cast<int>(jobs.size())); ++worker)
            others.emplace_back([this] { work(); });
    } catch (const std::system_error&) {  // NOLINT(bugprone-empty-catch): nothing is lost
        // The system gives no more threads: those that there are do it all.
    }
    work();
}

void DigestJobs::work() {
    const std::function<bool()> isSpent = [this] { return budget.isSpent(); };
    while (const auto job = takeNext())
        put(*job, digester.digest(pool[jobs[*job].entry], stage, isSpent));
}

std::optional<std::size_t> DigestJobs::takeNext() {
    const std::lock_guard guard(lock);
    while (nextIndex < jobs.size() && !isStopped) {
        if (budget.isSpent()) {
            isStopped = true;
            break;
        }
        const std::size_t job = nextIndex++;
        if (candidates[jobs[job].kind] > 1) return job;
    }
    return std::nullopt;
}

void DigestJobs::put(std::size_t job, const DigestResult& result) {
    const auto& [entry, kind] = jobs[job];
    FinderProgress progress;
    {
        const std::lock_guard guard(lock);
        if (result.kind == DigestResult::Kind::cancelled) {
            isStopped = true;
            return;
        }
        results[job] = result;
        if (result.kind != DigestResult::Kind::digest) --candidates[kind];
        ++shown.done;
        shown.bytesDone = saturatingAdd(shown.bytesDone, FileDigesting::rangeOf(stage, pool[entry].stamp.size).length);
        progress = shown;
    }
    progress.current = pool[entry].path.full().native();
    publish(progress);
}

void DigestJobs::publish(const FinderProgress& progress) {
    if (box != nullptr) box->set(progress);
}

}  // namespace vostrel
