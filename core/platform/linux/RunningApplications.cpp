#include "platform/RunningApplications.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <expected>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

#include "platform/FileContent.h"
#include "platform/OwnedDescriptor.h"
#include "platform/linux/ApplicationScope.h"

namespace vostrel {

namespace {

constexpr std::size_t longestFile = 65'536;

std::expected<std::string, int> contentOf(const std::filesystem::path& path) {
    const OwnedDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file.isOpen()) return std::unexpected(errno);
    return readBytes(file.get(), longestFile);
}

/// Whether the system could not tell, rather than that there is nothing to tell.
bool isWant(int error) {
    return error == EMFILE || error == ENFILE || error == ENOMEM;
}

bool isNumber(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

std::vector<std::filesystem::path> desktopFolders() {
    std::vector<std::filesystem::path> folders{"/usr/local/share/applications", "/usr/share/applications",
                                               "/var/lib/flatpak/exports/share/applications"};
    if (const char* home = std::getenv("HOME"))
        folders.insert(folders.begin(), std::filesystem::path(home) / ".local/share/applications");
    return folders;
}

}  // namespace

std::optional<std::set<std::string>> SystemRunningApps::runningIdentifiers() const {
    std::set<std::string> identifiers;
    std::error_code failure;
    for (std::filesystem::directory_iterator process("/proc", failure), end; !failure && process != end;
         process.increment(failure)) {
        struct stat status{};
        if (!isNumber(process->path().filename().native())) continue;
        if (::stat(process->path().c_str(), &status) != 0 || status.st_uid != ::getuid()) continue;
        const auto groups = contentOf(process->path() / "cgroup");
        if (!groups && isWant(groups.error())) return std::nullopt;
        if (!groups) continue;  // it has ended, or is closed to everybody
        if (auto identifier = linux_platform::applicationOfGroups(*groups)) identifiers.insert(*std::move(identifier));
    }
    if (failure) return std::nullopt;
    return identifiers;
}

std::string SystemRunningApps::displayName(const std::string& identifier) const {
    if (identifier.contains('/')) return identifier;
    for (const auto& folder : desktopFolders()) {
        const auto entry = contentOf(folder / (identifier + ".desktop"));
        if (!entry) continue;
        if (auto name = linux_platform::nameInDesktopEntry(*entry)) return *std::move(name);
    }
    return identifier;
}

}  // namespace vostrel
