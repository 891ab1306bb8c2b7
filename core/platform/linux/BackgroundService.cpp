#include "platform/BackgroundService.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <fstream>
#include <string_view>
#include <system_error>

#include "base/SystemError.h"
#include "platform/ProgramRun.h"

namespace vostrel {

namespace {

constexpr const char* unitName = "vostrel-agent.service";

// Stopping the service stops what it cleans and records that, which takes systemd's own limit at most.
constexpr std::chrono::seconds longestWait{120};

/// A word as unit files quote it. Variables need no care behind ExecStart's colon.
std::string unitWord(std::string_view word) {
    std::string text = "\"";
    for (const char letter : word) {
        if (letter == '%') {
            text += "%%";
        } else if (letter == '"' || letter == '\\') {
            text += {'\\', letter};
        } else if (static_cast<unsigned char>(letter) < ' ' || letter == '\x7f') {
            text += fmt::format("\\x{:02x}", static_cast<unsigned char>(letter));
        } else {
            text += letter;
        }
    }
    return text + '"';
}

std::string unitFor(const std::filesystem::path& program, const std::vector<std::string>& arguments) {
    std::string command = unitWord(program.native());
    for (const std::string& argument : arguments)
        command += ' ' + unitWord(argument);
    return fmt::format(
        "[Unit]\n"
        "Description=Vostrel: keeps the disk from filling up\n"
        "\n"
        "[Service]\n"
        "ExecStart=:{}\n"
        "# Started again after a crash, and after a refusal: another agent that runs now may end.\n"
        "Restart=on-failure\n"
        "RestartSec=60\n"
        "Nice=10\n"
        "NoNewPrivileges=yes\n"
        "\n"
        "[Install]\n"
        "WantedBy=default.target\n",
        command);
}

std::filesystem::path unitFile(const std::filesystem::path& home, const Environment& environment) {
    const auto named = environment.find("XDG_CONFIG_HOME");
    const bool isNamed = named != environment.end() && named->second.starts_with('/');
    const std::filesystem::path settings = isNamed ? std::filesystem::path(named->second) : home / ".config";
    return settings / "systemd/user" / unitName;
}

std::unexpected<std::string> couldNot(const char* operation, const std::filesystem::path& path, int code) {
    return std::unexpected(SystemError{code, operation, path}.description() + ".");
}

bool userManager(std::vector<std::string> words) {
    words.insert(words.begin(), {"systemctl", "--user"});
    return runProgram(words, longestWait) == 0;
}

}  // namespace

std::expected<std::filesystem::path, std::string> installBackgroundService(const std::vector<std::string>& arguments,
                                                                           const std::filesystem::path& home,
                                                                           const Environment& environment) {
    std::error_code problem;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", problem);
    if (problem) return couldNot("find", "/proc/self/exe", problem.value());
    auto unit = unitFile(home, environment);
    std::filesystem::create_directories(unit.parent_path(), problem);
    if (problem) return couldNot("make the folder", unit.parent_path(), problem.value());
    std::ofstream file(unit);
    file << unitFor(program, arguments);
    file.close();
    if (!file) return couldNot("write", unit, errno);
    if (!userManager({"daemon-reload"}) || !userManager({"enable", "--now", unitName})) {
        return std::unexpected(
            fmt::format("The service is described in {}, but systemd did not start it. In a desktop session, run: "
                        "systemctl --user enable --now {}",
                        unit.native(), unitName));
    }
    // One that was running goes on with the description of now.
    if (!userManager({"restart", unitName})) return std::unexpected("systemd did not start the service again.");
    return unit;
}

std::expected<bool, std::string> removeBackgroundService(const std::filesystem::path& home,
                                                         const Environment& environment) {
    const auto unit = unitFile(home, environment);
    std::error_code problem;
    if (!std::filesystem::exists(unit, problem)) return false;
    // Without a user manager nothing runs and there is nothing to stop.
    const bool isStopped = userManager({"disable", "--now", unitName});
    if (!std::filesystem::remove(unit, problem)) return couldNot("remove", unit, problem.value());
    if (isStopped) userManager({"daemon-reload"});
    return true;
}

}  // namespace vostrel
