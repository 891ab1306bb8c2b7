#pragma once

#include <array>
#include <cstddef>
#include <expected>
#include <string>

#include "base/Date.h"
#include "platform/OwnedDescriptor.h"
#include "probes/ProcessRunning.h"

namespace vostrel {

/// Collects what a child writes into two pipes, up to a limit on both together. One thread.
class OutputPipes {
public:
    /// The reading ends; reading from them never waits.
    OutputPipes(OwnedDescriptor output, OwnedDescriptor errors, std::size_t maxBytes);

    /// Whether anybody may still write.
    [[nodiscard]] bool areOpen() const;
    /// Waits up to `limit` for something to read, then reads what is there. Fails when that is too much.
    [[nodiscard]] std::expected<void, ProcessFailure> read(Duration limit);
    [[nodiscard]] ProcessOutput take() &&;

private:
    struct Stream {
        OwnedDescriptor readEnd;
        std::string content;
    };

    [[nodiscard]] std::expected<void, ProcessFailure> readOf(Stream& stream);
    [[nodiscard]] std::size_t size() const { return streams[0].content.size() + streams[1].content.size(); }

    std::array<Stream, 2> streams;
    std::size_t most;
};

}  // namespace vostrel
