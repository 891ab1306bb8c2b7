#include <gtest/gtest.h>

#include <array>

#include "base/Glob.h"

namespace vostrel {
namespace {

TEST(GlobTest, matchesNames) {
    constexpr const char* family = "\U0001F468\u200D\U0001F469\u200D\U0001F467";  // three people joined into one
    constexpr const char* flag = "\U0001F1E9\U0001F1EA";
    struct Row {
        const char* pattern;
        std::vector<const char*> matching, others;
    };
    const Row table[] = {
        {"*.LOG", {"Build.log", ".log", "a.b.LOG", "\u00E9.log"}, {"build.log.txt", "log", "b\r\n.logs"}},
        {"*.a.b", {"c.A.b"}, {"c.b", "ca.b"}},
        {"a?c", {"abc"}, {"ac", "abbc"}},
        {"*", {"", "anything"}, {}},
        {"?", {flag, family, "\r\n"}, {"", "ab"}},
        {"??", {"\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7"}, {flag}},
        {"a*b*c", {"axbxbxc"}, {"axbxbx"}},
        {"ab**", {"ab"}, {"a"}},
        // A backslash makes the next character literal.
        {"\\**", {"*"}, {"a"}},
        {"\\[a]", {"[a]"}, {"a"}},
        {"\\\\", {"\\"}, {}},
        // Sets.
        {"[!a-c]*", {"Dapple"}, {"Apple"}},
        {"[^a-c]", {"d"}, {"B"}},
        {"[A-C]", {"b", "B"}, {"-"}},
        {"[abc-]", {"-"}, {}},
        {"[-a]", {"-"}, {}},
        {"[c-a]", {}, {"b"}},
        {"[!]a]", {"b"}, {"]"}},
        {"[\\]]", {"]"}, {}},
        {"[a\\-c]", {"-"}, {"b"}},
        {"[*?]", {"*"}, {"a"}},
        {"[a-\\]]", {}, {"^"}},  // "a" sorts after "]"
        {"[!]", {}, {"!"}},      // not valid: never matches
        // Characters as a reader counts them, composed or not, without case.
        {"caf\u00E9", {"CAFE\u0301"}, {"cafe"}},
        {"cafe\u0301", {"CAF\u00C9"}, {}},
        {"caf?", {"cafe\u0301"}, {}},
        {"cafe*", {}, {"cafe\u0301"}},
        {"[a-z]", {}, {"\u00E9"}},
        {"[a-\u00FF]", {"\u00E9", "m"}, {}},
        {"\u0399\u03A3", {"\u03B9\u03C2"}, {}},  // sigma at the end of a word
        // Names that are not UTF-8 match byte by byte and equal only themselves.
        {"\xFF", {"\xFF"}, {"\xFE"}},
        {"a?z", {"a\xFFz"}, {}},
    };
    for (const auto& [pattern, matching, others] : table) {
        const auto glob = Glob::compile(pattern);
        const auto list = Glob::Patterns::compile(std::array<std::string, 2>{pattern, "neither this"});
        for (const auto* names : {&matching, &others}) {
            for (const char* name : *names) {
                EXPECT_EQ(glob && glob->matches(name), names == &matching) << pattern << " on " << name;
                EXPECT_EQ(list && list->matchesAny(name), names == &matching) << pattern << " in a list, on " << name;
            }
        }
    }
}

TEST(GlobTest, saysWhatIsWrongWithAPattern) {
    const std::pair<std::optional<std::string>, std::vector<const char*>> table[] = {
        {"A pattern cannot be empty.", {""}},
        {"Patterns match names, not paths, so they cannot contain \"/\".", {"a/b", " /", "[/"}},
        {"A pattern cannot start or end with a space.", {" a", "a ", "\\ "}},
        {R"(A pattern cannot end with "\". Use "\\" for a backslash.)", {"a\\", R"(a\\\)", "[a\\", "[a-\\"}},
        {R"(A "[" in the pattern has no matching "]".)", {"[a", "x[", "[]", "[!]", "[a\\]"}},
        {std::nullopt, {"[ab]]", "a\\\\", "a b", "]", "caf\u00E9"}},
    };
    for (const auto& [sentence, patterns] : table) {
        for (const char* pattern : patterns)
            EXPECT_EQ(Glob::validate(pattern), sentence) << pattern;
    }
}

TEST(GlobTest, manyStarsOnALongNameAreNoTrap) {
    const std::string name(20'000, 'a');
    std::string stars;
    for (int star = 0; star < 200; ++star)
        stars += "*a";
    EXPECT_TRUE(Glob::compile(stars)->matches(name));
    EXPECT_FALSE(Glob::compile(stars + "b")->matches(name));
    EXPECT_FALSE(Glob::compile(stars + "\u00E9")->matches(name + "\u00E8"));
}

TEST(GlobTest, letsNothingPassAPatternThatCannotBeRead) {
    using List = std::vector<std::string>;
    EXPECT_TRUE(Glob::passes("a.log", List{"*.txt", "*.log"}, List{"b*"}));
    EXPECT_FALSE(Glob::passes("a.log", List{}, List{"[a"}));
    EXPECT_FALSE(Glob::passes("a.log", List{"*.log", "[a"}, List{}));
}

}  // namespace
}  // namespace vostrel
