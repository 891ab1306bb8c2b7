#pragma once

#include <cstdint>
#include <functional>

#include "finder/FileHasher.h"
#include "finder/FinderCandidates.h"
#include "platform/SHA256.h"

namespace vostrel {

/// How much of a file is digested: its first 64 KiB, its last 64 KiB, or all of it.
enum class DigestStage { firstBlock, lastBlock, whole };

struct DigestResult {
    enum class Kind { digest, changed, unreadable, cancelled };

    Kind kind = Kind::cancelled;
    /// Of the kind `digest` only.
    SHA256Digest digest{};

    friend bool operator==(const DigestResult&, const DigestResult&) = default;
};

/// Digests files for the comparison of duplicates.
class FileDigesting {
public:
    virtual ~FileDigesting() = default;

    /// Thread-safe.
    [[nodiscard]] virtual DigestResult digest(const DuplicatePoolEntry& entry, DigestStage stage,
                                              const std::function<bool()>& isCancelled) const = 0;

    /// The bytes that a stage reads of a file of that size.
    [[nodiscard]] static FileHasher::Range rangeOf(DigestStage stage, std::int64_t size);
};

/// Digests the files themselves.
class FileDigester final : public FileDigesting {
public:
    FileDigester() = default;
    explicit FileDigester(FileHasher hashes) : hasher(std::move(hashes)) {}

    [[nodiscard]] DigestResult digest(const DuplicatePoolEntry& entry, DigestStage stage,
                                      const std::function<bool()>& isCancelled) const override;

private:
    FileHasher hasher;
};

}  // namespace vostrel
