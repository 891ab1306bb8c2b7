#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "stores/JSONCoding.h"
#include "stores/JSONNumber.h"

namespace vostrel {
namespace {

using namespace std::string_literals;

const JSONDecoder decoder = JSONCoding::decoder();
const JSONEncoder compact = JSONCoding::encoder(JSONLayout::compact);
const JSONEncoder pretty = JSONCoding::encoder(JSONLayout::pretty);

TEST(JSONCodingTest, keepsTheTextOfEveryNumber) {
    const std::string thirtyEightDigits(38, '7');
    const std::vector<std::pair<std::string, JSONValue>> numbers{
        {"0", 0},
        {"-1", -1},
        {"9223372036854775807", INT64_MAX},
        {"-9223372036854775808", INT64_MIN},
        {"1.5", 1.5},
        {"-0", -0.0},
        {"0.1", 0.1},
        {"0.00001", 0.00001},
        {"1e-06", 1e-06},
        {"1e+22", 1e22},
        {"1.7976931348623157e+308", std::numeric_limits<double>::max()},
        {"5e-324", std::numeric_limits<double>::denorm_min()},
        {"9223372036854775808", JSONDecimal{"9223372036854775808"}},
        {"18446744073709551616", JSONDecimal{"18446744073709551616"}},
        {"0.1000000000000000055511151231257827", JSONDecimal{"0.1000000000000000055511151231257827"}},
        {"1.0", JSONDecimal{"1.0"}},
        {"-0.0", JSONDecimal{"-0.0"}},
        {"0e999999999999999999999", JSONDecimal{"0e999999999999999999999"}},
        {"1E5", JSONDecimal{"1E5"}},
        {"1e22", JSONDecimal{"1e22"}},
        {thirtyEightDigits + "e127", JSONDecimal{thirtyEightDigits + "e127"}},
        {"1e164", JSONDecimal{"1e164"}},
        {"1e-129", 1e-129},
        {"1E-128", JSONDecimal{"1E-128"}},
        {thirtyEightDigits + "e128", JSONUnrepresentableNumber{thirtyEightDigits + "e128"}},
        {thirtyEightDigits + "7", JSONUnrepresentableNumber{thirtyEightDigits + "7"}},
        {"1E-129", JSONUnrepresentableNumber{"1E-129"}},
        {"1e165", JSONUnrepresentableNumber{"1e165"}},
        {"1e400", JSONUnrepresentableNumber{"1e400"}},
        {"-1e-400", JSONUnrepresentableNumber{"-1e-400"}},
        {"1e-9999999999999999999999", JSONUnrepresentableNumber{"1e-9999999999999999999999"}},
        {"0." + std::string(2000, '3'), JSONUnrepresentableNumber{"0." + std::string(2000, '3')}},
    };
    for (const auto& [text, value] : numbers) {
        for (const auto& inside : {text, " " + text + "\n"}) {
            const auto read = decoder.decode(inside);
            ASSERT_TRUE(read) << text << ": " << read.error().text();
            EXPECT_EQ(*read, value) << text;
            EXPECT_EQ(compact.encode(*read), text);
        }
    }
}

TEST(JSONCodingTest, keepsEveryString) {
    const std::vector<std::pair<std::string, std::string>> strings{
        {R"("a/b")", "a/b"},
        {R"("\"\\\b\f\n\r\t")", "\"\\\b\f\n\r\t"},
        {R"("\u0000\u001f")", "\0\x1F"s},
        {"\"\x7F é 😀 \xEF\xBF\xBF\"", "\x7F é 😀 \xEF\xBF\xBF"},
        {R"("")", ""},
    };
    for (const auto& [text, content] : strings) {
        EXPECT_EQ(decoder.decode(text), JSONValue(content)) << text;
        EXPECT_EQ(compact.encode(JSONValue(content)), text);
    }
    EXPECT_EQ(decoder.decode(R"("\/ \u00e9 \ud83d\ude00 \u00C9")"), JSONValue("/ é 😀 É"));
}

TEST(JSONCodingTest, refusesWhatIsNotOneWholeJSONValue) {
    const std::vector<std::string> damaged{
        "",
        " \n",
        "[",
        "]",
        "{",
        "}",
        "[}",
        "{]",
        "][",
        "],[",
        "1],[2",
        "[1,]",
        "[,1]",
        "[1 2]",
        "[1,,2]",
        "[:]",
        "[true:1]",
        R"(["a":1])",
        R"({"a"})",
        R"({"a":})",
        R"({"a" 1})",
        R"({"a":1,})",
        R"({,"a":1})",
        R"({a:1})",
        R"({1:2})",
        R"({"a":1 "b":2})",
        R"({"a":"b":1})",
        R"({"a":1}})",
        R"([1]])",
        "1 2",
        "{} {}",
        "[] null",
        "nul",
        "nulll",
        "True",
        "tru e",
        "NaN",
        "Infinity",
        "-",
        "+1",
        "01",
        "-01",
        "1.",
        ".5",
        "1e",
        "1e+",
        "0x10",
        "1.0abc",
        "1,",
        "--1",
        "1_000",
        "1\f",
        "[true\v]",
        "\f1",
        R"("a)",
        R"("\")",
        R"("\x")",
        R"("\u12")",
        R"("\u12G4")",
        R"("\ud800")",
        R"("\udc00")",
        R"("\ud800\u0041")",
        R"("\ud800x")",
        R"({"\ud800":1})",
        "\"a\nb\"",
        "\"\x01\"",
        "\"\xFF\"",
        "\"\xC0\x80\"",
        "\"\xED\xA0\x80\"",
        "{\"\xFF\":1}",
        "[1]\0"s,
        "\0"s,
        "\xFF",
        "\xEF\xBB\xBF[]",
        "'a'",
        "[1] // note",
        R"({"a":nul})",
        R"([1, 2, {"a": [}]})",
    };
    for (const auto& text : damaged)
        EXPECT_FALSE(decoder.decode(text)) << testing::PrintToString(text);
}

TEST(JSONCodingTest, refusesATextCutAnywhere) {
    const std::string text = R"({"a":[1,2.5,"x\u00e9",{"b":null}],"c":{"d":true}})";
    ASSERT_TRUE(decoder.decode(text));
    for (std::size_t length = 0; length < text.size(); ++length)
        EXPECT_FALSE(decoder.decode(text.substr(0, length))) << length;
}

TEST(JSONCodingTest, boundsTheDepthBothWays) {
    const auto nested = [](int levels) {
        const auto count = static_cast<std::size_t>(levels);
        return std::string(count, '[') + std::string(count, ']');
    };
    const auto deepest = decoder.decode(nested(deepestJSON));
    ASSERT_TRUE(deepest);
    EXPECT_EQ(compact.encode(*deepest), nested(deepestJSON));
    EXPECT_FALSE(compact.encode(JSONValue(JSONArray{*deepest})));
    for (const auto& text : {nested(deepestJSON + 1), nested(1'000'000), std::string(1'000'000, '[')})
        EXPECT_FALSE(decoder.decode(text));
    std::string objects;
    for (int level = 0; level < 100'000; ++level)
        objects += R"({"a":)";
    EXPECT_FALSE(decoder.decode(objects));
}

TEST(JSONCodingTest, writesSortedKeysOnLinesOfTheirOwn) {
    const JSONValue value(JSONObject{{"b", JSONArray{1, "x/y", JSONArray{}}}, {"a", JSONObject{}}, {"B", true}});
    EXPECT_EQ(compact.encode(value), R"({"B":true,"a":{},"b":[1,"x/y",[]]})");
    EXPECT_EQ(pretty.encode(value), R"({
  "B": true,
  "a": {},
  "b": [
    1,
    "x/y",
    []
  ]
})");
}

TEST(JSONCodingTest, keepsARepeatedKey) {
    const auto value = decoder.decode(R"({"b":1,"a":2,"b":3})");
    ASSERT_TRUE(value);
    EXPECT_EQ(compact.encode(*value), R"({"a":2,"b":1,"b":3})");
    EXPECT_EQ(*value->as<JSONObject>()->repeatedKey(), "b");
    EXPECT_EQ(*value->as<JSONObject>()->find("b"), JSONValue(1));
    EXPECT_EQ(value->as<JSONObject>()->find("c"), nullptr);
}

TEST(JSONCodingTest, refusesToWriteWhatJSONCannotSay) {
    const std::vector<JSONValue> values{
        std::numeric_limits<double>::infinity(),
        std::numeric_limits<double>::quiet_NaN(),
        JSONDecimal{"1,5"},
        JSONUnrepresentableNumber{""},
        "\xFF",
        JSONObject{{"\xC3", 1}},
    };
    for (const auto& value : values)
        EXPECT_FALSE(compact.encode(JSONValue(JSONArray{value})));
    EXPECT_EQ(compact.encode(JSONValue(JSONObject{{"a", JSONArray{1, "\xFF"}}})).error().text(),
              "a[1]: JSON has no text that is not UTF-8.");
}

TEST(JSONCodingTest, readsBackEveryDoubleItWrites) {
    double value = std::numeric_limits<double>::denorm_min();
    while (value < 1e307) {
        value *= 7.3;
        for (const double number : {value, -value, std::nextafter(value, 0.0)}) {
            const std::string text = canonicalNumber(number);
            EXPECT_EQ(nearestDouble(text), number) << text;
            EXPECT_TRUE(isNumberToken(text)) << text;
        }
    }
}

}  // namespace
}  // namespace vostrel
