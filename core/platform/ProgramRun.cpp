#include "platform/ProgramRun.h"

#include <cerrno>

#include "platform/ChildProcess.h"

namespace vostrel {

std::expected<int, int> runProgram(const std::vector<std::string>& words, Duration limit) {
    const ChildProcess child({.words = words, .environment = processEnvironment(), .output = {}, .errors = {}});
    const auto end = child.waitForEnd(limit);
    if (!end) return std::unexpected(ETIMEDOUT);
    if (end->kind == ChildEnd::Kind::exited) return end->number;
    if (end->kind == ChildEnd::Kind::signaled) return 128 + end->number;
    return std::unexpected(end->number);
}

}  // namespace vostrel
