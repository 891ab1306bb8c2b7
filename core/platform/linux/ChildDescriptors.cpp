#include "platform/ChildDescriptors.h"

#include <fcntl.h>

#include <array>
#include <cerrno>

namespace vostrel {

namespace {

constexpr int afterStandard = 3;

/// The descriptor itself, or a copy of it where it has the place of a standard one.
std::expected<OwnedDescriptor, int> besideStandard(OwnedDescriptor descriptor) {
    if (descriptor.get() >= afterStandard) return descriptor;
    OwnedDescriptor copy(::fcntl(descriptor.get(), F_DUPFD_CLOEXEC, afterStandard));
    if (!copy.isOpen()) return std::unexpected(errno);
    return copy;
}

}  // namespace

std::expected<int, int> closeOtherDescriptors(posix_spawn_file_actions_t& actions) {
    if (const int error = posix_spawn_file_actions_addclosefrom_np(&actions, afterStandard); error != 0)
        return std::unexpected(error);
    return 0;
}

std::expected<Pipe, int> makePipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) return std::unexpected(errno);
    OwnedDescriptor lowReadEnd(ends[0]);
    OwnedDescriptor lowWriteEnd(ends[1]);
    auto readEnd = besideStandard(std::move(lowReadEnd));
    auto writeEnd = besideStandard(std::move(lowWriteEnd));
    if (!readEnd) return std::unexpected(readEnd.error());
    if (!writeEnd) return std::unexpected(writeEnd.error());
    if (::fcntl(readEnd->get(), F_SETFL, O_NONBLOCK) != 0) return std::unexpected(errno);
    return Pipe{.readEnd = *std::move(readEnd), .writeEnd = *std::move(writeEnd)};
}

}  // namespace vostrel
