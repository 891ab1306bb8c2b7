#pragma once

#include <expected>
#include <span>
#include <string>
#include <string_view>

#include "base/Glob.h"

namespace vostrel {

/// The names that a tool gives, as a preset writes them: name patterns in which, besides, "{a|b}" is either of the two
/// (braces may lie in one another, and a choice may be empty) and "#" is a whole number of any length. In a pattern
/// with "#" every other digit is one too: "arm64-#" is the same as "arm#-#". Unlike a rule's patterns they are compared
/// byte by byte: a tool always writes its names the same way.
class PresetNames {
public:
    PresetNames() = default;
    /// The sentence about the first pattern that is not valid, if there is one.
    [[nodiscard]] static std::expected<PresetNames, std::string> compile(std::span<const std::string> patterns);

    [[nodiscard]] bool isEmpty() const { return plain.isEmpty() && numbered.isEmpty(); }
    [[nodiscard]] bool matchesAny(std::string_view name) const;

private:
    PresetNames(Glob::ExactPatterns asTheyAre, Glob::ExactPatterns withNumbers)
        : plain(std::move(asTheyAre)), numbered(std::move(withNumbers)) {}

    Glob::ExactPatterns plain;
    /// Matched by names whose numbers are written as "#".
    Glob::ExactPatterns numbered;
};

}  // namespace vostrel
