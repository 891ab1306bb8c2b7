#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vostrel {

/// Unicode forms of names and paths, by utf8proc. ASCII text takes a path of its own that touches no table.
///
/// File names are bytes. A name that is not valid UTF-8 has no Unicode form: it keeps its bytes (ASCII letters are
/// still folded), so it equals only itself.

[[nodiscard]] bool isASCII(std::string_view text);
[[nodiscard]] bool isValidUTF8(std::string_view text);

/// The text with U+FFFD in place of each byte that is not UTF-8.
[[nodiscard]] std::string repaired(std::string_view text);

/// Canonical composition (NFC).
[[nodiscard]] std::string precomposed(std::string_view text);

/// The form in which names and path components are compared: NFC, case folded without a locale, NFC again.
[[nodiscard]] std::string folded(std::string_view text);

/// Appends `folded(text)`; for keys that grow component by component.
void appendFolded(std::string& out, std::string_view text);

/// The characters as a reader sees them (extended grapheme clusters). Each byte that is not UTF-8 is one of its own.
[[nodiscard]] std::vector<std::string_view> graphemes(std::string_view text);

/// Without the spaces, tabs and line breaks, of any script, at both ends.
[[nodiscard]] std::string_view trimmed(std::string_view text);

}  // namespace vostrel
