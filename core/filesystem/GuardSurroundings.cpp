#include "filesystem/GuardSurroundings.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <memory>

#include "platform/CloudState.h"
#include "platform/UserAccount.h"
#include "platform/VolumeFacts.h"

namespace vostrel {

namespace {

std::expected<std::filesystem::path, int> resolvedByTheSystem(const std::filesystem::path& path) {
    const std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(path.c_str(), nullptr), &std::free);
    if (!resolved) return std::unexpected(errno);
    return std::filesystem::path(resolved.get());
}

std::optional<GuardSurroundings::FileOwner> examinedBySystem(const std::filesystem::path& path) {
    struct stat facts{};
    if (::stat(path.c_str(), &facts) != 0) return std::nullopt;
    return GuardSurroundings::FileOwner{{static_cast<std::int32_t>(facts.st_dev), facts.st_ino}, facts.st_uid};
}

}  // namespace

GuardSurroundings GuardSurroundings::of(const std::filesystem::path& home, const Environment& environment) {
    return of(home, home, environment);
}

GuardSurroundings GuardSurroundings::of(const std::filesystem::path& home, const std::filesystem::path& accountHome,
                                        const Environment& environment) {
    GuardSurroundings surroundings;
    surroundings.home = home;
    surroundings.accountHome = accountHome;
    surroundings.temporaryFolder = vostrel::temporaryFolder();
    surroundings.userID = effectiveUserID();
    surroundings.system = systemKind();
    if (const auto prefix = environment.find("HOMEBREW_PREFIX"); prefix != environment.end()) {
        surroundings.packagePrefix = prefix->second;
    }
    surroundings.userFolders = vostrel::userFolders(home, environment);
    if (accountHome != home) {
        for (auto& folder : vostrel::userFolders(accountHome, {}))
            surroundings.userFolders.push_back(std::move(folder));
    }
    surroundings.resolve = resolvedByTheSystem;
    surroundings.examine = examinedBySystem;
    surroundings.isMountPoint = vostrel::isMountPoint;
    surroundings.mountAliases = vostrel::mountAliasesOf;
    surroundings.isInICloud = vostrel::isInCloudStorage;
    surroundings.isDatalessPath = vostrel::isDataless;
    return surroundings;
}

}  // namespace vostrel
