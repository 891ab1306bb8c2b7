#pragma once

#include <expected>
#include <string>
#include <vector>

#include "base/Date.h"

namespace vostrel {

/// Runs a program to its end: one of the system's own tools, asked to do something for which it prints nothing that
/// matters. `words` are its name, looked up in PATH, and its arguments. Nothing stands on its standard input, what it
/// prints is thrown away, and the terminal's signals do not reach it. One that takes longer than `limit` is killed, and
/// so is what it leaves running in its process group.
///
/// Gives the exit status (128 and the signal when one ended it), or the error number: ETIMEDOUT after the limit. Safe
/// on any thread.
[[nodiscard]] std::expected<int, int> runProgram(const std::vector<std::string>& words, Duration limit);

}  // namespace vostrel
