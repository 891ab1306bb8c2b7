#pragma once

namespace vostrel {

/// The systems that the library knows the places of.
enum class SystemKind { macOS, linux };

[[nodiscard]] SystemKind systemKind();

}  // namespace vostrel
