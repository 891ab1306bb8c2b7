#include "platform/FileContent.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace vostrel {

std::expected<std::string, int> readBytes(int openFile, std::size_t most) {
    std::string content;
    std::array<char, 65'536> piece{};
    while (content.size() < most) {
        const auto count = ::read(openFile, piece.data(), std::min(piece.size(), most - content.size()));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::unexpected(errno);
        if (count == 0) break;
        content.append(piece.data(), static_cast<std::size_t>(count));
    }
    return content;
}

}  // namespace vostrel
