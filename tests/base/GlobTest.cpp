#include <gtest/gtest.h>

#include "base/Glob.h"

namespace vostrel {
namespace {

struct Match {
    const char* pattern;
    const char* name;
    bool matches;
};

constexpr const char* family = "\U0001F468\u200D\U0001F469\u200D\U0001F467";  // three people joined into one character

TEST(GlobTest, matchesNames) {
    const Match table[] = {
        {"*.LOG", "Build.log", true},
        {"*.log", "build.log.txt", false},
        {"a?c", "abc", true},
        {"a?c", "ac", false},
        {"a?c", "abbc", false},
        {"*", "", true},
        {"?", "", false},
        {"a", "", false},
        {"a*b*c", "axbxbxc", true},
        {"a*b*c", "axbxbx", false},
        {"**", "anything", true},
        {"ab**", "ab", true},
        // A backslash makes the next character literal.
        {"\\*", "*", true},
        {"\\*", "a", false},
        {"\\[a]", "[a]", true},
        {"\\\\", "\\", true},
        // Sets.
        {"[!a-c]*", "Apple", false},
        {"[!a-c]*", "Dapple", true},
        {"[^a-c]", "B", false},
        {"[a-c]", "B", true},
        {"[A-C]", "b", true},
        {"[abc-]", "-", true},
        {"[-a]", "-", true},
        {"[c-a]", "b", false},
        {"[]a]", "]", true},
        {"[!]a]", "]", false},
        {"[!]a]", "b", true},
        {"[\\]]", "]", true},
        {"[a\\-c]", "b", false},
        {"[a\\-c]", "-", true},
        {"[*?]", "*", true},
        {"[*?]", "a", false},
        {"[a-\\]]", "^", false},  // "a" sorts after "]"
        {"[!]", "!", false},      // not valid: never matches
        // Characters as a reader counts them, composed or not, without case.
        {"caf\u00E9", "CAFE\u0301", true},
        {"cafe\u0301", "CAF\u00C9", true},
        {"caf?", "cafe\u0301", true},
        {"cafe*", "cafe\u0301", false},
        {"[\u00E9]", "E\u0301", true},
        {"[a-z]", "\u00E9", false},
        {"[a-\u00FF]", "\u00E9", true},
        {"[a-\u00FF]", "m", true},
        {"?", "\U0001F1E9\U0001F1EA", true},  // a flag
        {"??", "\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7", true},
        {"?", family, true},
        {"???", family, false},
        {"\u0399\u03A3", "\u03B9\u03C2", true},  // sigma at the end of a word
        {"?", "\r\n", true},
        // Names that are not UTF-8 match byte by byte and equal only themselves.
        {"a?c",
         "a\xFF"
         "c",
         true},
        {"\xFF", "\xFE", false},
    };
    for (const auto& [pattern, name, matches] : table) {
        const auto glob = Glob::compile(pattern);
        EXPECT_EQ(glob && glob->matches(name), matches) << pattern << " on " << name;
    }
}

TEST(GlobTest, saysWhatIsWrongWithAPattern) {
    using Sentence = std::optional<std::string>;
    const std::pair<Sentence, std::vector<const char*>> table[] = {
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

TEST(GlobTest, passesWhatIsIncludedAndNotExcluded) {
    using List = std::vector<std::string>;
    const auto passes = [](const char* name, const List& include, const List& exclude) {
        return Glob::passes(name, include, exclude);
    };
    EXPECT_TRUE(passes("a.log", {}, {}));
    EXPECT_TRUE(passes("a.log", {"*.txt", "*.log"}, {"b*"}));
    EXPECT_FALSE(passes("a.md", {"*.txt", "*.log"}, {}));
    EXPECT_FALSE(passes("b.log", {"*.log"}, {"b*"}));
    EXPECT_FALSE(passes("e\u0301.log", {}, {"\u00C9*"}));
    EXPECT_FALSE(passes("a.log", {}, {"[a"})) << "a pattern that cannot be read lets nothing pass";
    EXPECT_FALSE(passes("a.log", {"*.log", "[a"}, {}));

    const auto patterns = Glob::Patterns::compile(List{"*.txt", "[a-c]*"});
    EXPECT_TRUE(patterns->matchesAny("Beta"));
    EXPECT_FALSE(patterns->matchesAny("Delta"));
    EXPECT_FALSE(Glob::Patterns().matchesAny("Delta"));
    EXPECT_EQ(Glob::Patterns::compile(List{"*", "a/b", ""}).error(),
              "Patterns match names, not paths, so they cannot contain \"/\".");
}

}  // namespace
}  // namespace vostrel
