#include <gtest/gtest.h>

#include <string>

#include "base/PrintableText.h"

namespace vostrel {
namespace {

TEST(PrintableTextTest, keepsNamesFromBreakingLinesAndSteeringTheTerminal) {
    struct Row {
        std::string text, shown;
    };
    const Row rows[] = {
        {"plain name.txt", "plain name.txt"},
        {"Übergrößen 日本 👩‍👩‍👧", "Übergrößen 日本 👩‍👩‍👧"},
        {"two\nlines\r\tand a tab", "two\\nlines\\r\\tand a tab"},
        {"\x1b[2Jgone\x7f", "\\x1b[2Jgone\\x7f"},
        {"not \xff\xfeUTF-8", "not \\xff\\xfeUTF-8"},
        {"cut \xe6\x97", "cut \\xe6\\x97"},
        {"photo\u202Egnp.exe", "photo\\u{202e}gnp.exe"},
        {"line\u2028separator \u0085", "line\\u{2028}separator \\u{85}"},
        {std::string("nul\0byte", 8), "nul\\x00byte"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(printable(row.text), row.shown);
}

TEST(PrintableTextTest, countsTheColumnsOfATerminal) {
    EXPECT_EQ(columns("plain"), 5U);
    EXPECT_EQ(columns("über"), 4U);
    EXPECT_EQ(columns("u\u0308ber"), 4U);
    EXPECT_EQ(columns("日本"), 4U);
}

}  // namespace
}  // namespace vostrel
