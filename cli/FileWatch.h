#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <tuple>

#include "base/Date.h"
#include "platform/FileStatus.h"

namespace vostrel::cli {

/// Tells whether a file was written, replaced or removed since it was last asked.
class FileWatch {
public:
    explicit FileWatch(std::filesystem::path file) : path(std::move(file)) {}

    /// True at the first call.
    [[nodiscard]] bool hasChanged() {
        const auto status = statusOfPath(path);
        const Look now = status ? Look(0, status->device, status->inode, status->length, status->changed)
                                : Look(status.error(), 0, 0, 0, Date());
        const bool isSame = last == now;
        last = now;
        return !isSame;
    }
    [[nodiscard]] bool isThere() const { return statusOfPath(path).has_value(); }
    /// The next call says that it changed.
    void forget() { last.reset(); }

private:
    using Look = std::tuple<int, std::int32_t, std::uint64_t, std::int64_t, Date>;

    std::filesystem::path path;
    std::optional<Look> last;
};

}  // namespace vostrel::cli
