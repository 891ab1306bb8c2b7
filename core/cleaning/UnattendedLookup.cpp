#include "cleaning/UnattendedLookup.h"

#include <cerrno>
#include <system_error>

#include "base/SystemError.h"
#include "platform/FileStatus.h"
#include "platform/FolderOpening.h"
#include "platform/OwnedDescriptor.h"

namespace vostrel {

UnattendedLookup::Verdict UnattendedLookup::look(const std::filesystem::path& folder) const {
    const auto verdictOn = [&](int error) -> Verdict {
        if (isMissing(error)) return Missing{};
        return Blocked{unreadableReasonOf(error, fullDiskAccess)};
    };
    if (const auto reason = access(folder.native()).blockedFor) return Blocked{*reason};
    std::error_code failure;
    const auto real = std::filesystem::canonical(folder, failure);
    if (failure) return verdictOn(failure.value());
    // A link may lead where the path as written did not.
    if (const auto reason = access(real.native()).blockedFor) return Blocked{*reason};
    const auto status = statusOfPath(real);
    if (!status) return verdictOn(status.error());
    if (status->type != EntryType::folder) return Missing{};
    const OwnedDescriptor opened(openFolder(real));
    if (!opened.isOpen()) return verdictOn(errno);
    return Allowed{real};
}

}  // namespace vostrel
