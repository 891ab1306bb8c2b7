#pragma once

namespace vostrel {

/// How often the user is told what could be freed; the cases stand in the order in which they are offered.
enum class SuggestionCadence { weekly, monthly, off };

}  // namespace vostrel
