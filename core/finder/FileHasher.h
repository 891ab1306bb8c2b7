#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <variant>

#include "finder/FinderPath.h"
#include "finder/FinderStamp.h"
#include "platform/OwnedDescriptor.h"
#include "platform/SHA256.h"
#include "platform/UncachedReading.h"

namespace vostrel {

/// What came of hashing one file.
struct HashedBytes {
    SHA256Digest digest;
    std::int64_t bytesRead = 0;

    friend bool operator==(const HashedBytes&, const HashedBytes&) = default;
};
/// With the error number.
struct HashUnreadable {
    int error = 0;

    friend bool operator==(const HashUnreadable&, const HashUnreadable&) = default;
};
/// It is not the file any more that the stamp was taken of.
struct HashChanged {
    friend bool operator==(const HashChanged&, const HashChanged&) = default;
};
struct HashCancelled {
    friend bool operator==(const HashCancelled&, const HashCancelled&) = default;
};
using HashOutcome = std::variant<HashedBytes, HashUnreadable, HashChanged, HashCancelled>;

/// Hashes files with SHA-256, each checked before and after to be the one that was walked, past the system's cache. A
/// value; any thread.
struct FileHasher {
    static constexpr std::int64_t firstBlockBytes = 65'536;
    static constexpr std::size_t chunkBytes = 262'144;

    using Opener = std::function<OwnedDescriptor(const std::filesystem::path&)>;
    /// As `readAt` does.
    using Reader = std::function<std::int64_t(int file, std::span<std::byte> into, std::int64_t offset)>;

    /// Thread-safe, both.
    Opener opener = &openForReading;
    Reader reader = &readAt;

    /// Which bytes of the file.
    struct Range {
        std::int64_t start = 0;
        std::int64_t length = 0;
    };

    /// `range` lies in the file. `isCancelled` is asked between chunks.
    [[nodiscard]] HashOutcome hash(const std::filesystem::path& path, const FinderStamp& expected, const Range& range,
                                   const std::function<bool()>& isCancelled) const;
};

}  // namespace vostrel
