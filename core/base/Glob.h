#pragma once

#include <expected>
#include <functional>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vostrel {

/// A name pattern: "?" is any one character, "*" any run of them, "[a-z]" and "[!a-z]" one character in or not in a
/// set, a backslash makes the next character literal. A "]" right after the opening of a set belongs to the set.
///
/// Patterns and names are compared folded (NFC, without case), character by character as a reader counts them, so an
/// accented letter or a flag is one "?". A pattern that exists is valid. Matching an ASCII name allocates nothing, and
/// no pattern takes longer than its length times the name's.
class Glob {
public:
    class Patterns;
    class ExactPatterns;

    /// The first thing wrong with a pattern, as a sentence; nothing when it is valid.
    [[nodiscard]] static std::optional<std::string> validate(std::string_view pattern);
    /// The pattern ready to match, or the sentence that `validate` gives.
    [[nodiscard]] static std::expected<Glob, std::string> compile(std::string_view pattern);

    [[nodiscard]] bool matches(std::string_view name) const;

    /// Whether a name matches no exclude pattern and, where there are include patterns, one of those.
    /// With a pattern that cannot be read nothing passes.
    [[nodiscard]] static bool passes(std::string_view name, std::span<const std::string> include,
                                     std::span<const std::string> exclude);
    [[nodiscard]] static bool passes(std::string_view name, const Patterns& include, const Patterns& exclude);

    struct Literal {
        std::string character;
    };
    struct Any {};
    struct Star {};
    struct Set {
        /// From first to last in string order; a single character is a range of itself.
        struct Range {
            std::string first;
            std::string last;
        };
        bool negated = false;
        std::vector<Range> ranges;
    };
    using Token = std::variant<Literal, Any, Star, Set>;

private:
    [[nodiscard]] static std::expected<Glob, std::string> compile(std::string_view pattern,
                                                                  std::vector<std::string_view> characters);
    explicit Glob(std::vector<Token> compiled) : tokens(std::move(compiled)) {}

    std::vector<Token> tokens;
};

/// A list of patterns compiled once. Of long lists, names and endings ("*.docx") cost an ASCII name next to nothing.
class Glob::Patterns {
public:
    Patterns() = default;
    /// The list, or the sentence about the first pattern that is not valid.
    [[nodiscard]] static std::expected<Patterns, std::string> compile(std::span<const std::string> patterns);

    [[nodiscard]] bool isEmpty() const { return globs.empty(); }
    [[nodiscard]] bool matchesAny(std::string_view name) const;

private:
    void add(Glob glob);
    [[nodiscard]] bool looksUp(std::string_view lowered) const;

    std::vector<Glob> globs;
    // The same for ASCII names: whole ones, what stands after a "*" from a "." on, and all others.
    std::set<std::string, std::less<>> names;
    std::set<std::string, std::less<>> endings;
    std::vector<Glob> others;
};

/// The same, compared byte by byte with nothing folded: "[a-z]" is a small ASCII letter and "?" any one byte.
class Glob::ExactPatterns {
public:
    ExactPatterns() = default;
    /// The list, or the sentence about the first pattern that is not valid.
    [[nodiscard]] static std::expected<ExactPatterns, std::string> compile(std::span<const std::string> patterns);

    [[nodiscard]] bool isEmpty() const { return globs.empty(); }
    [[nodiscard]] bool matchesAny(std::string_view name) const;

private:
    std::vector<Glob> globs;
};

}  // namespace vostrel
