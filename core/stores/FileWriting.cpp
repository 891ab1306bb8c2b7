#include "stores/FileWriting.h"

#include <unistd.h>

#include <cerrno>
#include <span>

namespace vostrel {

ssize_t systemWrite(std::int32_t descriptor, const std::byte* bytes, std::size_t count) {
    return ::write(descriptor, bytes, count);
}

std::expected<void, int> writeAll(int openFile, std::string_view bytes, const FileWriter& writer) {
    auto rest = std::as_bytes(std::span(bytes));
    while (!rest.empty()) {
        errno = 0;
        const ssize_t count = writer(openFile, rest.data(), rest.size());
        if (count > 0) {
            rest = rest.subspan(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return std::unexpected(errno != 0 ? errno : EIO);
        }
    }
    return {};
}

}  // namespace vostrel
