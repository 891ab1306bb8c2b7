#pragma once

#include <spawn.h>

#include <expected>

#include "platform/OwnedDescriptor.h"

namespace vostrel {

/// Which descriptors a child has.

/// Has the child begin with no descriptors but the standard three, which the actions so far have opened. The flags
/// that the child's attributes need for it, or an error number.
[[nodiscard]] std::expected<int, int> closeOtherDescriptors(posix_spawn_file_actions_t& actions);

struct Pipe {
    /// Reading never waits.
    OwnedDescriptor readEnd;
    OwnedDescriptor writeEnd;
};

/// A pipe that no child inherits by itself, neither end in the place of a standard descriptor; or the error number.
[[nodiscard]] std::expected<Pipe, int> makePipe();

}  // namespace vostrel
