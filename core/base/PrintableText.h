#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vostrel {

/// Text from outside (names of files and rules, sentences that quote them) as a terminal may be given it: control
/// characters, marks that turn the writing direction and bytes that are not UTF-8 are written as "\n", "\x1b" or
/// "\u{202e}", so that a file's name can neither break a line nor steer the terminal.
[[nodiscard]] std::string printable(std::string_view text);

/// How many columns printable text takes on a terminal.
[[nodiscard]] std::size_t columns(std::string_view printableText);

}  // namespace vostrel
