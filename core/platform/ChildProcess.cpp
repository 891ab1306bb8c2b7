#include "platform/ChildProcess.h"

#include <fcntl.h>
#include <signal.h>  // NOLINT(modernize-deprecated-headers): the signals are POSIX, not C++
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <condition_variable>
#include <expected>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/ChildDescriptors.h"

namespace vostrel {

namespace {

/// How a child begins. The first error of a step is kept in `error`.
class Beginning {
public:
    explicit Beginning(const ChildProgram& program) {
        posix_spawn_file_actions_init(&files);
        posix_spawnattr_init(&attributes);
        keep(posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0));
        lead(program.output, STDOUT_FILENO);
        lead(program.errors, STDERR_FILENO);
        sigset_t signals;
        sigemptyset(&signals);
        keep(posix_spawnattr_setsigmask(&attributes, &signals));
        sigfillset(&signals);
        sigdelset(&signals, SIGKILL);
        sigdelset(&signals, SIGSTOP);
        keep(posix_spawnattr_setsigdefault(&attributes, &signals));
        keep(posix_spawnattr_setpgroup(&attributes, 0));
        constexpr int flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP;
        const auto closing = closeOtherDescriptors(files);
        keep(closing ? posix_spawnattr_setflags(&attributes, static_cast<short>(flags | *closing)) : closing.error());
    }
    Beginning(const Beginning&) = delete;
    Beginning& operator=(const Beginning&) = delete;
    ~Beginning() {
        posix_spawn_file_actions_destroy(&files);
        posix_spawnattr_destroy(&attributes);
    }

    posix_spawn_file_actions_t files{};
    posix_spawnattr_t attributes{};
    int error = 0;

private:
    void keep(int result) {
        if (error == 0) error = result;
    }
    void lead(const OwnedDescriptor& descriptor, int standard) {
        keep(descriptor.isOpen() ? posix_spawn_file_actions_adddup2(&files, descriptor.get(), standard)
                                 : posix_spawn_file_actions_addopen(&files, standard, "/dev/null", O_WRONLY, 0));
    }
};

/// Texts as `execve` takes them.
std::vector<char*> listOf(std::vector<std::string>& texts) {
    std::vector<char*> list;
    for (std::string& text : texts)
        list.push_back(text.data());
    list.push_back(nullptr);
    return list;
}

std::expected<pid_t, int> spawn(ChildProgram& program) {
    const Beginning beginning(program);
    if (beginning.error != 0) return std::unexpected(beginning.error);
    std::vector<std::string> variables;
    for (const auto& [name, value] : program.environment)
        variables.push_back(name + "=" + value);
    const auto start = program.words.front().contains('/') ? ::posix_spawn : ::posix_spawnp;
    pid_t child = 0;
    const int error = start(&child, program.words.front().c_str(), &beginning.files, &beginning.attributes,
                            listOf(program.words).data(), listOf(variables).data());
    if (error != 0) return std::unexpected(error);
    return child;
}

ChildEnd endOf(int status) {
    if (WIFEXITED(status)) return {.kind = ChildEnd::Kind::exited, .number = WEXITSTATUS(status)};
    return {.kind = ChildEnd::Kind::signaled, .number = WTERMSIG(status)};
}

}  // namespace

/// What the child's thread and its callers know of it.
struct ChildProcess::Life {
    std::mutex lock;
    std::condition_variable ending;
    /// Its process and group, from its start until it is reaped: from then on the number may be another's.
    std::optional<pid_t> running;
    bool isToDie = false;
    std::optional<ChildEnd> end;

    /// All of a child's life, on its own thread.
    void lead(ChildProgram program) {
        const auto child = spawn(program);
        // Whoever reads what it writes finds the end when the child is gone.
        program.output.reset();
        program.errors.reset();
        if (!child) return finish({.kind = ChildEnd::Kind::notStarted, .number = child.error()});
        begin(*child);
        siginfo_t ended{};
        while (::waitid(P_PID, static_cast<id_t>(*child), &ended, WEXITED | WNOWAIT) != 0) {
            if (errno != EINTR) return finish({.kind = ChildEnd::Kind::notWaitedFor, .number = errno});
        }
        reap(*child);
    }

    void finish(ChildEnd how) {
        const std::scoped_lock held(lock);
        finishHeld(how);
    }

private:
    void begin(pid_t child) {
        const std::scoped_lock held(lock);
        running = child;
        if (isToDie) ::kill(-child, SIGKILL);
    }

    /// Of a child that has ended. While it is a zombie, its number still names its group and nobody else's.
    void reap(pid_t child) {
        const std::scoped_lock held(lock);
        ::kill(-child, SIGKILL);
        int status = 0;
        while (::waitpid(child, &status, 0) != child) {
            if (errno != EINTR) return finishHeld({.kind = ChildEnd::Kind::notWaitedFor, .number = errno});
        }
        finishHeld(endOf(status));
    }

    void finishHeld(ChildEnd how) {
        running.reset();
        end = how;
        ending.notify_all();
    }
};

ChildProcess::ChildProcess(ChildProgram program) : life(std::make_shared<Life>()) {
    try {
        std::thread([own = life, program = std::move(program)]() mutable { own->lead(std::move(program)); }).detach();
    } catch (const std::system_error&) {
        life->finish({.kind = ChildEnd::Kind::notStarted, .number = EAGAIN});
    }
}

ChildProcess::~ChildProcess() {
    kill();
}

std::optional<ChildEnd> ChildProcess::waitForEnd(Duration limit) const {
    std::unique_lock held(life->lock);
    life->ending.wait_for(held, limit, [&] { return life->end.has_value(); });
    return life->end;
}

void ChildProcess::kill() const {
    const std::scoped_lock held(life->lock);
    life->isToDie = true;
    if (life->running) ::kill(-*life->running, SIGKILL);
}

}  // namespace vostrel
