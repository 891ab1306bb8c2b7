#include "base/Glob.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "base/UnicodeText.h"
#include "base/Visit.h"

namespace vostrel {

namespace {

constexpr const char* emptyPattern = "A pattern cannot be empty.";
constexpr const char* holdsSlash = "Patterns match names, not paths, so they cannot contain \"/\".";
constexpr const char* spaceAtAnEnd = "A pattern cannot start or end with a space.";
constexpr const char* loneBackslash = R"(A pattern cannot end with "\". Use "\\" for a backslash.)";
constexpr const char* openBracket = R"(A "[" in the pattern has no matching "]".)";

/// Turns the characters of a pattern into tokens; stops at the first problem.
class Compiler {
public:
    explicit Compiler(std::vector<std::string_view> pattern) : characters(std::move(pattern)) {}

    std::expected<std::vector<Glob::Token>, std::string> tokens() {
        std::vector<Glob::Token> out;
        while (!atEnd())
            out.push_back(nextToken());
        if (problem) return std::unexpected(problem);
        return out;
    }

private:
    [[nodiscard]] bool atEnd() const { return problem != nullptr || at == characters.size(); }
    [[nodiscard]] bool nextIs(std::string_view character) const { return !atEnd() && characters[at] == character; }
    bool take(std::string_view character) {
        if (!nextIs(character)) return false;
        ++at;
        return true;
    }

    Glob::Token nextToken() {
        if (take("*")) return Glob::Star{};
        if (take("?")) return Glob::Any{};
        if (take("[")) return set();
        return Glob::Literal{literal()};
    }

    std::string literal() {
        if (take("\\") && atEnd()) return failing(loneBackslash);
        return std::string(characters[at++]);
    }

    Glob::Set set() {
        Glob::Set set;
        set.negated = take("!") || take("^");
        while (set.ranges.empty() || !take("]")) {
            if (!problem && atEnd()) failing(openBracket);
            if (problem) return set;
            set.ranges.push_back(nextRange());
        }
        return set;
    }

    Glob::Set::Range nextRange() {
        const std::string first = literal();
        if (!joinsARange()) return {first, first};
        ++at;
        return {first, literal()};
    }

    /// A "-" joins two characters; as the last one of a set it stands for itself.
    [[nodiscard]] bool joinsARange() const {
        return nextIs("-") && at + 1 < characters.size() && characters[at + 1] != "]";
    }

    std::string failing(const char* sentence) {
        problem = sentence;
        return {};
    }

    std::vector<std::string_view> characters;
    std::size_t at = 0;
    const char* problem = nullptr;
};

/// The characters of an ASCII name, folded as they are read.
class ASCIICharacters {
public:
    explicit ASCIICharacters(std::string_view text) : name(text) {}
    [[nodiscard]] std::size_t size() const { return name.size(); }
    [[nodiscard]] std::string_view operator[](std::size_t place) const {
        return {&lowered[static_cast<unsigned char>(name[place])], 1};
    }

private:
    static constexpr std::array<char, 128> lowered = [] {
        std::array<char, 128> table{};
        for (std::size_t code = 0; code < table.size(); ++code)
            table[code] = static_cast<char>(code >= 'A' && code <= 'Z' ? code - 'A' + 'a' : code);
        return table;
    }();

    std::string_view name;
};

/// A name as it is, each byte a character.
class Bytes {
public:
    explicit Bytes(std::string_view text) : name(text) {}
    [[nodiscard]] std::size_t size() const { return name.size(); }
    [[nodiscard]] std::string_view operator[](std::size_t place) const { return name.substr(place, 1); }

private:
    std::string_view name;
};

std::vector<std::string_view> bytesOf(std::string_view text) {
    std::vector<std::string_view> list;
    for (std::size_t place = 0; place < text.size(); ++place)
        list.push_back(text.substr(place, 1));
    return list;
}

/// Whether each byte of a name is a character: a carriage return and the line feed after it are one.
bool isPlain(std::string_view name) {
    return isASCII(name) && name.find('\r') == std::string_view::npos;
}

/// Gives `match` the folded characters of a name.
template <class Match>
bool withCharacters(std::string_view name, Match match) {
    if (isPlain(name)) return match(ASCIICharacters(name));
    const std::string form = folded(name);
    return match(graphemes(form));
}

/// The text that tokens stand for; nothing when they stand for several, or for one that no plain name has.
std::optional<std::string> textOf(std::span<const Glob::Token> tokens) {
    std::string text;
    for (const Glob::Token& token : tokens) {
        const auto* literal = std::get_if<Glob::Literal>(&token);
        if (literal == nullptr || !isPlain(literal->character)) return std::nullopt;
        text += literal->character;
    }
    return text;
}

bool isInSet(const Glob::Set& set, std::string_view character) {
    const auto holds = [&](const auto& range) { return range.first <= character && character <= range.last; };
    return std::ranges::any_of(set.ranges, holds) != set.negated;
}

bool matchesOne(const Glob::Token& token, std::string_view character) {
    return visit(
        token, [&](const Glob::Literal& literal) { return literal.character == character; },
        [](const Glob::Any&) { return true; }, [](const Glob::Star&) { return false; },
        [&](const Glob::Set& set) { return isInSet(set, character); });
}

bool isStar(const Glob::Token& token) {
    return std::holds_alternative<Glob::Star>(token);
}

/// The greedy walk. On a mismatch the last star takes one character more; earlier stars never need another try.
template <class Characters>
bool walk(const std::vector<Glob::Token>& tokens, const Characters& name) {
    std::size_t token = 0;
    std::size_t place = 0;
    std::optional<std::size_t> star;
    std::size_t takenByStar = 0;
    while (place < name.size()) {
        if (token < tokens.size() && isStar(tokens[token])) {
            star = token++;
            takenByStar = place;
        } else if (token < tokens.size() && matchesOne(tokens[token], name[place])) {
            ++token;
            ++place;
        } else if (star) {
            token = *star + 1;
            place = ++takenByStar;
        } else {
            return false;
        }
    }
    return std::all_of(tokens.begin() + static_cast<std::ptrdiff_t>(token), tokens.end(), isStar);
}

}  // namespace

std::optional<std::string> Glob::validate(std::string_view pattern) {
    const auto glob = compile(pattern);
    return glob ? std::nullopt : std::optional(glob.error());
}

std::expected<Glob, std::string> Glob::compile(std::string_view pattern) {
    const std::string form = folded(pattern);
    return compile(pattern, graphemes(form));
}

std::expected<Glob, std::string> Glob::compile(std::string_view pattern, std::vector<std::string_view> characters) {
    if (pattern.empty()) return std::unexpected(emptyPattern);
    if (pattern.contains('/')) return std::unexpected(holdsSlash);
    if (pattern.starts_with(' ') || pattern.ends_with(' ')) return std::unexpected(spaceAtAnEnd);
    auto tokens = Compiler(std::move(characters)).tokens();
    if (!tokens) return std::unexpected(std::move(tokens.error()));
    return Glob(std::move(*tokens));
}

bool Glob::matches(std::string_view name) const {
    return withCharacters(name, [&](const auto& characters) { return walk(tokens, characters); });
}

bool Glob::passes(std::string_view name, std::span<const std::string> include, std::span<const std::string> exclude) {
    const auto included = Patterns::compile(include);
    const auto excluded = Patterns::compile(exclude);
    return included && excluded && passes(name, *included, *excluded);
}

bool Glob::passes(std::string_view name, const Patterns& include, const Patterns& exclude) {
    return !exclude.matchesAny(name) && (include.isEmpty() || include.matchesAny(name));
}

std::expected<Glob::Patterns, std::string> Glob::Patterns::compile(std::span<const std::string> patterns) {
    Patterns list;
    for (const std::string& pattern : patterns) {
        auto glob = Glob::compile(pattern);
        if (!glob) return std::unexpected(std::move(glob.error()));
        list.add(std::move(*glob));
    }
    return list;
}

void Glob::Patterns::add(Glob glob) {
    const std::span<const Token> tokens(glob.tokens);
    const auto ending = isStar(tokens.front()) ? textOf(tokens.subspan(1)) : std::nullopt;
    if (auto name = textOf(tokens)) {
        names.insert(*std::move(name));
    } else if (ending && ending->starts_with('.')) {
        endings.insert(*ending);
    } else {
        others.push_back(glob);
    }
    globs.push_back(std::move(glob));
}

bool Glob::Patterns::matchesAny(std::string_view name) const {
    const auto walksAny = [](const std::vector<Glob>& list, const auto& characters) {
        return std::ranges::any_of(list, [&](const Glob& glob) { return walk(glob.tokens, characters); });
    };
    std::array<char, 256> lowered;  // longer than most systems let names be
    if (!isPlain(name) || name.size() > lowered.size())
        return withCharacters(name, [&](const auto& characters) { return walksAny(globs, characters); });
    const ASCIICharacters characters(name);
    for (std::size_t place = 0; place < characters.size(); ++place)
        lowered[place] = characters[place].front();
    return looksUp({lowered.data(), name.size()}) || walksAny(others, characters);
}

/// Whether the name, or an ending of it that begins with a ".", is listed.
bool Glob::Patterns::looksUp(std::string_view lowered) const {
    if (names.contains(lowered)) return true;
    if (endings.empty()) return false;
    for (auto dot = lowered.find('.'); dot != std::string_view::npos; dot = lowered.find('.', dot + 1)) {
        if (endings.contains(lowered.substr(dot))) return true;
    }
    return false;
}

std::expected<Glob::ExactPatterns, std::string> Glob::ExactPatterns::compile(std::span<const std::string> patterns) {
    ExactPatterns list;
    for (const std::string& pattern : patterns) {
        auto glob = Glob::compile(pattern, bytesOf(pattern));
        if (!glob) return std::unexpected(std::move(glob.error()));
        list.globs.push_back(std::move(*glob));
    }
    return list;
}

bool Glob::ExactPatterns::matchesAny(std::string_view name) const {
    return std::ranges::any_of(globs, [&](const Glob& glob) { return walk(glob.tokens, Bytes(name)); });
}

}  // namespace vostrel
