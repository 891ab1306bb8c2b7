#pragma once

#include <expected>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <variant>

#include "cli/CommandResult.h"

namespace vostrel::cli {

class Program;

/// What holds for every command.
struct GlobalOptions {
    std::optional<std::filesystem::path> home;
    std::optional<std::filesystem::path> data;
    bool json = false;
    bool noProgress = false;
};

/// A command with all that its line said, ready to be run.
using Command = std::function<CommandResult(Program&)>;

struct Request {
    GlobalOptions options;
    Command command;
};

/// What was asked for in place of a command: help, or the version.
struct Answer {
    std::string text;
};

/// A line that makes no sense; nothing has been done for it.
struct WrongCommandLine {
    std::string sentence;
    bool json = false;
};

using CommandLine = std::variant<Request, Answer, WrongCommandLine>;

[[nodiscard]] CommandLine readCommandLine(int count, const char* const* arguments);

}  // namespace vostrel::cli
