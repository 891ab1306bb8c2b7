#include <gtest/gtest.h>

#include <string>

#include "base/PrintableText.h"

namespace vostrel {
namespace {

TEST(PrintableTextTest, keepsNamesFromBreakingLinesAndSteeringTheTerminal) {
    using namespace std::string_literals;
    const std::pair<std::string, const char*> table[] = {
        {"Übergrößen 日本 👩‍👩‍👧", "Übergrößen 日本 👩‍👩‍👧"},
        {"two\nlines\r\tand a tab", "two\\nlines\\r\\tand a tab"},
        {"\x1b[2Jgone\x7f", "\\x1b[2Jgone\\x7f"},
        {"not \xff\xfeUTF-8", "not \\xff\\xfeUTF-8"},
        {"cut \xe6\x97", "cut \\xe6\\x97"},
        {"photo\u202Egnp.exe", "photo\\u{202e}gnp.exe"},
        {"line\u2028separator \u0085", "line\\u{2028}separator \\u{85}"},
        {"nul\0byte"s, "nul\\x00byte"},
    };
    for (const auto& [text, shown] : table)
        EXPECT_EQ(printable(text), shown);
}

TEST(PrintableTextTest, countsTheColumnsOfATerminal) {
    for (const char* text : {"über", "u\u0308ber", "日本"})
        EXPECT_EQ(columns(text), 4U) << text;
}

}  // namespace
}  // namespace vostrel
