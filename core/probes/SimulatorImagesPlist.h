#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "probes/ProbeResults.h"

namespace vostrel::SimulatorImagesPlist {

/// The folder of simulator runtimes, and where their owner lists them.
inline constexpr std::string_view folder = "/Library/Developer/CoreSimulator/Images";
inline constexpr std::string_view path = "/Library/Developer/CoreSimulator/Images/images.plist";

/// The images that the file's bytes list, none of them measured. One without a UUID or a path is left out. Nothing when
/// the bytes are no such list.
[[nodiscard]] std::optional<std::vector<SimulatorImage>> parse(std::string_view bytes);

/// "iOS 18.1" for "com.apple.CoreSimulator.SimRuntime.iOS-18-1"; any other text is its own name.
[[nodiscard]] std::string runtimeName(std::string_view runtime);

}  // namespace vostrel::SimulatorImagesPlist
