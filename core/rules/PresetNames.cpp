#include "rules/PresetNames.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace vostrel {

namespace {

/// Writes the pattern once for each of its choices, those of the innermost braces first.
void spellOut(const std::string& pattern, std::vector<std::string>& spelled) {
    const auto close = pattern.find('}');
    const auto open = close == std::string::npos ? close : pattern.rfind('{', close);
    if (open == std::string::npos) return spelled.push_back(pattern);
    for (auto start = open + 1; start <= close;) {
        const auto end = std::min(pattern.find('|', start), close);
        spellOut(pattern.substr(0, open) + pattern.substr(start, end - start) + pattern.substr(close + 1), spelled);
        start = end + 1;
    }
}

std::string withNumbersMarked(std::string_view name) {
    std::string marked;
    for (const char letter : name) {
        const bool isDigit = letter >= '0' && letter <= '9';
        if (!isDigit) {
            marked += letter;
        } else if (!marked.ends_with('#')) {
            marked += '#';
        }
    }
    return marked;
}

}  // namespace

std::expected<PresetNames, std::string> PresetNames::compile(std::span<const std::string> patterns) {
    std::vector<std::string> spelled;
    for (const std::string& pattern : patterns)
        spellOut(pattern, spelled);
    std::vector<std::string> asTheyAre;
    std::vector<std::string> withNumbers;
    for (std::string& pattern : spelled) {
        if (pattern.contains('#')) {
            withNumbers.push_back(withNumbersMarked(pattern));
        } else {
            asTheyAre.push_back(std::move(pattern));
        }
    }
    auto plain = Glob::ExactPatterns::compile(asTheyAre);
    if (!plain) return std::unexpected(std::move(plain.error()));
    auto numbered = Glob::ExactPatterns::compile(withNumbers);
    if (!numbered) return std::unexpected(std::move(numbered.error()));
    return PresetNames(*std::move(plain), *std::move(numbered));
}

bool PresetNames::matchesAny(std::string_view name) const {
    if (plain.matchesAny(name)) return true;
    return !numbered.isEmpty() && !name.contains('#') && numbered.matchesAny(withNumbersMarked(name));
}

}  // namespace vostrel
