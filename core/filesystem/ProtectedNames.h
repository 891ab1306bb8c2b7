#pragma once

#include <string_view>

namespace vostrel {

/// What a name alone says about an item, wherever it lies.
enum class ProtectedName {
    none,
    /// A photo, music or video library, a virtual machine's disk or a backup, by its extension.
    library,
    /// An image file as downloads come in. A tool's cache may hold those too, and there they may go.
    diskImage,
    /// A store of passwords, by its extension.
    passwords,
    /// A store of Apple's media apps, by the name of its container. It counts below a folder named Library only.
    mediaStore,
};

/// Judges one component of a path, as it is spelled. Asked for every file of a preview: it allocates nothing while the
/// name is ASCII.
[[nodiscard]] ProtectedName protectedName(std::string_view name);

}  // namespace vostrel
