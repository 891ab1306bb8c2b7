#include "platform/UserAccount.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

namespace vostrel {

std::uint32_t effectiveUserID() {
    return ::geteuid();
}

std::filesystem::path accountHome() {
    constexpr std::size_t largestEntry = 1 << 20;
    for (std::vector<char> buffer(4096); buffer.size() <= largestEntry; buffer.resize(buffer.size() * 4)) {
        passwd entry{};
        passwd* found = nullptr;
        const int failure = ::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found);
        if (failure == ERANGE) continue;
        return found != nullptr && entry.pw_dir != nullptr ? std::filesystem::path(entry.pw_dir)
                                                           : std::filesystem::path();
    }
    return {};
}

}  // namespace vostrel
