#include "probes/OutputPipes.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <utility>

namespace vostrel {

namespace {

constexpr std::size_t pieceSize = 65'536;

std::unexpected<ProcessFailure> failed(ProcessFailure::Kind kind, int code = 0) {
    return std::unexpected(ProcessFailure{.kind = kind, .code = code});
}

}  // namespace

OutputPipes::OutputPipes(OwnedDescriptor output, OwnedDescriptor errors, std::size_t maxBytes)
    : streams{Stream{.readEnd = std::move(output), .content = {}}, Stream{.readEnd = std::move(errors), .content = {}}},
      most(maxBytes) {}

bool OutputPipes::areOpen() const {
    return streams[0].readEnd.isOpen() || streams[1].readEnd.isOpen();
}

std::expected<void, ProcessFailure> OutputPipes::read(Duration limit) {
    // A negative number, of a stream that has ended, is passed over.
    std::array<pollfd, 2> ends{pollfd{.fd = streams[0].readEnd.get(), .events = POLLIN, .revents = 0},
                               pollfd{.fd = streams[1].readEnd.get(), .events = POLLIN, .revents = 0}};
    const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(limit).count();
    if (::poll(ends.data(), ends.size(), static_cast<int>(milliseconds)) < 0 && errno != EINTR)
        return failed(ProcessFailure::Kind::readFailed, errno);
    for (Stream& stream : streams) {
        if (auto result = readOf(stream); !result) return result;
    }
    return {};
}

std::expected<void, ProcessFailure> OutputPipes::readOf(Stream& stream) {
    std::array<char, pieceSize> piece;  // NOLINT(*-member-init): only what was read is looked at
    while (stream.readEnd.isOpen()) {
        const auto count = ::read(stream.readEnd.get(), piece.data(), piece.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) break;
        if (count < 0) return failed(ProcessFailure::Kind::readFailed, errno);
        if (count == 0) {
            stream.readEnd.reset();
            break;
        }
        if (size() + static_cast<std::size_t>(count) > most) return failed(ProcessFailure::Kind::outputTooLarge);
        stream.content.append(piece.data(), static_cast<std::size_t>(count));
    }
    return {};
}

ProcessOutput OutputPipes::take() && {
    return {.output = std::move(streams[0].content), .errors = std::move(streams[1].content)};
}

}  // namespace vostrel
