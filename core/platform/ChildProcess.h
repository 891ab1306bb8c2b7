#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Date.h"
#include "platform/OwnedDescriptor.h"
#include "platform/ProcessEnvironment.h"

namespace vostrel {

/// A program to run beside this one.
struct ChildProgram {
    /// Its name, looked up in this process's PATH unless it has a slash, and its arguments.
    std::vector<std::string> words;
    /// All of its environment.
    Environment environment;
    /// Where its standard output and its errors go; thrown away where there is nothing.
    OwnedDescriptor output;
    OwnedDescriptor errors;
};

/// How a child ended, or why it never ran.
struct ChildEnd {
    enum class Kind { exited, signaled, notStarted, notWaitedFor };
    Kind kind = Kind::exited;
    /// The exit status, the signal, or an error number.
    int number = 0;
};

/// A child that runs beside this process, in a process group of its own, with the default signals, nothing on its
/// standard input, and no descriptor but the standard three, however carelessly others were opened.
///
/// A thread of its own starts it, waits for its end and reaps it: a system may hold up the start of a program for as
/// long as it likes (while a scanner looks at it, say), and no caller is to wait for that. Whatever its group still
/// runs when the child ends is killed. No child becomes a zombie, not even one that outlives this object. Any thread.
class ChildProcess {
public:
    /// Begins to start it.
    explicit ChildProcess(ChildProgram program);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    /// Kills it, and does not wait for that.
    ~ChildProcess();

    /// Waits no longer than `limit`; nothing while it has not ended. Once it has, everything that it wrote is in its
    /// pipes.
    [[nodiscard]] std::optional<ChildEnd> waitForEnd(Duration limit) const;
    /// Kills the child and its group, as soon as it has started.
    void kill() const;

private:
    struct Life;
    std::shared_ptr<Life> life;
};

}  // namespace vostrel
