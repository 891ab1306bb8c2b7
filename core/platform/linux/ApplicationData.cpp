#include "platform/ApplicationData.h"

namespace vostrel {

std::filesystem::path applicationDataFolder(const std::filesystem::path& home, const Environment& environment) {
    const auto named = environment.find("XDG_DATA_HOME");
    if (named != environment.end() && named->second.starts_with('/')) return named->second;
    return home / ".local/share";
}

}  // namespace vostrel
