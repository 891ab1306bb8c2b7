#include <gtest/gtest.h>
#include <signal.h>  // NOLINT(modernize-deprecated-headers): the signals are POSIX, not C++

#include <atomic>
#include <thread>
#include <vector>

#include "probes/SystemProcessRunner.h"
#include "support/Rounds.h"

namespace vostrel {
namespace {

using namespace std::chrono_literals;

TEST(SystemProcessRunnerSharedState, killsAllThatRunWhateverTheyAreAt) {
    const ProbeCommand endless{.executable = "/bin/sleep", .arguments = {"1000"}};
    const ProbeCommand brief{.executable = "/bin/sleep", .arguments = {"0.01"}};
    constexpr int threads = 4;
    std::atomic<int> left = threads;
    std::vector<std::thread> running;
    for (int thread = 0; thread < threads; ++thread) {
        running.emplace_back([&] {
            SystemProcessRunner runner;
            runner.allowList = {endless, brief};
            const ProcessResult killed = std::unexpected(ProcessFailure{ProcessFailure::Kind::signaled, SIGKILL});
            for (int round = 0; round < test::rounds(3); ++round) {
                EXPECT_TRUE(runner.run(endless, 500s) == killed);
                const auto result = runner.run(brief, 500s);
                EXPECT_TRUE(result.has_value() || result == killed);
            }
            --left;
        });
    }
    while (left > 0) {
        std::this_thread::sleep_for(5ms);
        SystemProcessRunner::killAll();
    }
    for (std::thread& thread : running)
        thread.join();
}

}  // namespace
}  // namespace vostrel
