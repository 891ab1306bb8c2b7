#include "spacemap/SpaceScanTarget.h"

#include <utility>

namespace vostrel {

SpaceScanTarget SpaceScanTarget::folder(const std::filesystem::path& path) {
    const auto plain = path.has_filename() || !path.has_relative_path() ? path : path.parent_path();
    return {plain, plain.has_filename() ? plain.filename().native() : plain.native(), false};
}

SpaceScanTarget SpaceScanTarget::choose(const std::filesystem::path& path, std::string bootVolumeName) {
    if (path.lexically_normal() == "/") return bootVolume(std::move(bootVolumeName));
    return folder(path);
}

}  // namespace vostrel
