#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>  // NOLINT(modernize-deprecated-headers): the signals are POSIX, not C++
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <functional>
#include <iterator>
#include <string>
#include <thread>

#include "platform/OwnedDescriptor.h"
#include "probes/SystemProcessRunner.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

using namespace std::chrono_literals;
using Kind = ProcessFailure::Kind;

ProbeCommand shell(const std::string& script) {
    return {.executable = "/bin/sh", .arguments = {"-c", script}};
}

ProcessResult wrote(std::string output, std::string errors = "") {
    return ProcessOutput{.output = std::move(output), .errors = std::move(errors)};
}

ProcessResult failed(Kind kind, int code = 0) {
    return std::unexpected(ProcessFailure{.kind = kind, .code = code});
}

std::ptrdiff_t openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

/// Waits until this process has no child, taking over orphans; false when one is left after half a minute.
bool allChildrenGo() {
    for (int look = 0; look < 3000; ++look) {
        siginfo_t ended{};
        // Reaps nothing that the runner may still be about to reap: it is left to be looked at again.
        if (::waitid(P_ALL, 0, &ended, WEXITED | WNOHANG | WNOWAIT) != 0) return errno == ECHILD;
        std::this_thread::sleep_for(10ms);
        if (ended.si_pid != 0) ::waitid(P_PID, static_cast<id_t>(ended.si_pid), &ended, WEXITED | WNOHANG);
    }
    return false;
}

/// Orphans of children become children of this process, so that none of them goes unseen.
class SystemProcessRunnerTest : public testing::Test {
protected:
    SystemProcessRunnerTest() { ::prctl(PR_SET_CHILD_SUBREAPER, 1); }
};

TEST_F(SystemProcessRunnerTest, endsEveryChildAndLeavesNothingBehind) {
    // An ignored and a blocked signal, and descriptors that a child would inherit.
    ::signal(SIGPIPE, SIG_IGN);
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR1);
    ::pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
    const OwnedDescriptor inheritable(::open("/dev/null", O_RDONLY));  // NOLINT(*-cloexec-open): that is the point
    const std::string full(SystemProcessRunner::usualOutputBytes, '\0');
    int asked = 0;

    struct Case {
        const char* name;
        ProbeCommand command;
        ProcessResult expected;
        Duration timeout = 60s;
        std::function<bool()> isCancelled = {};
    };
    const Case cases[] = {
        {"writes to both", shell("echo out; echo err >&2"), wrote("out\n", "err\n")},
        {"has nothing to read", shell("cat; echo end"), wrote("end\n")},
        {"has a clean environment",
         {.executable = "/usr/bin/env", .arguments = {}},
         wrote("LANG=C\nLC_ALL=C\nPATH=/usr/bin:/bin:/usr/sbin:/sbin\n")},
        // The last one is that of the listing itself.
        {"has three descriptors", {.executable = "/bin/ls", .arguments = {"/proc/self/fd"}}, wrote("0\n1\n2\n3\n")},
        // The C library keeps signals beyond the last seven digits to itself.
        {"has default signals", shell("! grep -E '^Sig(Ign|Blk):.*[1-9a-f].{0,6}$' /proc/self/status"), wrote("")},
        {"leads a group", shell("test \"$(cut -d ' ' -f 5 /proc/$$/stat)\" = $$"), wrote("")},
        {"fails", shell("echo out; exit 3"), failed(Kind::exited, 3)},
        {"dies", shell("kill -SEGV $$"), failed(Kind::signaled, SIGSEGV)},
        {"does not exist", {.executable = "/nonexistent", .arguments = {}}, failed(Kind::launchFailed, ENOENT)},
        {"ignores signals", shell("trap '' INT TERM HUP; while :; do sleep 1; done"), failed(Kind::timedOut), 200ms},
        {"has stopped itself", shell("kill -STOP $$"), failed(Kind::timedOut), 200ms},
        {"has no time", shell("sleep 100"), failed(Kind::timedOut), 0ns},
        {"is cancelled", shell("sleep 100"), failed(Kind::cancelled), 60s, [&asked] { return ++asked > 2; }},
        {"forks", shell("(sleep 100 & sleep 100 & wait) & wait"), failed(Kind::timedOut), 300ms},
        {"forks and writes", shell("yes & yes >&2 & wait"), failed(Kind::outputTooLarge)},
        {"closes its output", shell("exec >&- 2>&-; sleep 0.3; exit 5"), failed(Kind::exited, 5)},
        {"closes its output for good", shell("exec >&- 2>&-; sleep 100"), failed(Kind::timedOut), 300ms},
        {"floods its errors", shell("exec yes >&2"), failed(Kind::outputTooLarge)},
        {"writes as much as it may", shell("head -c 524288 /dev/zero"), wrote(full)},
        {"writes a byte more", shell("head -c 524289 /dev/zero"), failed(Kind::outputTooLarge)},
        {"writes a byte more in all", shell("head -c 524288 /dev/zero; echo >&2"), failed(Kind::outputTooLarge)},
        {"leaves a process that holds its pipes", shell("sleep 100 & echo out"), wrote("out\n")},
    };
    for (const auto& [name, command, expected, timeout, isCancelled] : cases) {
        SCOPED_TRACE(name);
        const auto before = openDescriptors();
        SystemProcessRunner runner;
        runner.allowList = {command};
        const ProcessResult result = runner.run(command, timeout, isCancelled);
        EXPECT_TRUE(result == expected) << (result ? result->text().substr(0, 200) : "failed");
        EXPECT_TRUE(allChildrenGo());
        EXPECT_EQ(openDescriptors(), before);
    }
}

TEST_F(SystemProcessRunnerTest, waitsForNoProcessThatHasLeftTheGroup) {
    SystemProcessRunner runner;
    runner.allowList = {shell("setsid sleep 1000 & sleep 0.3; echo $!")};
    const auto result = runner.run(*runner.allowList.begin(), 60s);
    ASSERT_TRUE(result.has_value());
    ::kill(std::stoi(result->output), SIGKILL);
    EXPECT_TRUE(allChildrenGo());
}

TEST_F(SystemProcessRunnerTest, startsOnlyWhatItsListHasToTheLetter) {
    SystemProcessRunner runner;
    auto longer = ProbeCommand::swapUsage();
    longer.arguments.emplace_back("-a");
    for (const ProbeCommand& command : {longer, shell("true"), ProbeCommand{"/usr/sbin/sysctl", {}}})
        EXPECT_TRUE(runner.run(command, 60s) == failed(Kind::notAllowed));
}

/// A program that is leased is held up by the system when it is started, until the lease is given back.
TEST_F(SystemProcessRunnerTest, waitsForNoChildThatHangsBeforeItRuns) {
    const TemporaryFolder folder;
    const auto program = folder.makeFile("program", "#!/bin/sh\nexec sleep 100\n");
    ::chmod(program.c_str(), 0700);
    ::signal(SIGIO, SIG_IGN);
    OwnedDescriptor lease(::open(program.c_str(), O_RDONLY | O_CLOEXEC));
    if (::fcntl(lease.get(), F_SETLEASE, F_WRLCK) != 0) GTEST_SKIP() << "no leases here";

    SystemProcessRunner runner;
    runner.allowList = {{.executable = program, .arguments = {}}};
    runner.killGrace = 50ms;
    runner.reapLimit = 100ms;
    EXPECT_TRUE(runner.run(*runner.allowList.begin(), 200ms) == failed(Kind::timedOut));
    lease.reset();
    EXPECT_TRUE(allChildrenGo());
}

}  // namespace
}  // namespace vostrel
