#include "rules/UserTempFolder.h"

#include <fcntl.h>

#include <cerrno>

#include "base/SystemError.h"
#include "platform/FileStatus.h"
#include "platform/OwnedDescriptor.h"

namespace vostrel {

std::expected<std::optional<std::filesystem::path>, SystemError> userTempFolder(const std::filesystem::path& tempBase,
                                                                                const std::string& prefix,
                                                                                std::uint32_t uid) {
    if (prefix.empty()) return std::nullopt;
    const OwnedDescriptor base(::open(tempBase.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!base.isOpen() && errno == ENOENT) return std::nullopt;
    if (!base.isOpen()) return std::unexpected(SystemError{errno, "open", tempBase});
    const std::string name = prefix + std::to_string(uid);
    const auto status = statusOfEntry(base.get(), name.c_str());
    if (!status && !isMissing(status.error())) {
        return std::unexpected(SystemError{status.error(), "examine", tempBase / name});
    }
    if (!status || status->type != EntryType::folder || status->owner != uid) return std::nullopt;
    return tempBase / name;
}

}  // namespace vostrel
