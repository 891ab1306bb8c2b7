#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>

#include "stores/JSONCoding.h"
#include "stores/JSONNumber.h"

namespace vostrel {
namespace {

using namespace std::string_literals;

const JSONDecoder decoder = JSONCoding::decoder();
const JSONEncoder compact = JSONCoding::encoder(JSONLayout::compact);

TEST(JSONCodingTest, keepsTheTextOfEveryNumber) {
    const std::string digits(38, '7');
    const std::pair<std::string, JSONValue> table[] = {
        {"0", 0},
        {"-1", -1},
        {"9223372036854775807", INT64_MAX},
        {"-9223372036854775808", INT64_MIN},
        {"1.5", 1.5},
        {"-0", -0.0},
        {"0.00001", 0.00001},
        {"1e-06", 1e-06},
        {"1e+22", 1e22},
        {"1.7976931348623157e+308", std::numeric_limits<double>::max()},
        {"5e-324", std::numeric_limits<double>::denorm_min()},
    };
    for (const auto& [text, value] : table) {
        EXPECT_EQ(decoder.decode(" " + text + "\n"), value) << text;
        EXPECT_EQ(compact.encode(value), text);
    }
    for (const auto& text :
         {"9223372036854775808"s, "18446744073709551616"s, "0.1000000000000000055511151231257827"s, "1.0"s, "-0.0"s,
          "0e999999999999999999999"s, "1E5"s, "1e22"s, digits + "e127", "1e164"s, "1E-128"s}) {
        EXPECT_EQ(decoder.decode(text), JSONValue(JSONDecimal{text})) << text;
        EXPECT_EQ(compact.encode(JSONValue(JSONDecimal{text})), text);
    }
    for (const auto& text : {digits + "e128", digits + "7", "1E-129"s, "1e165"s, "1e400"s, "-1e-400"s,
                             "1e-9999999999999999999999"s, "0." + std::string(2000, '3')}) {
        EXPECT_EQ(decoder.decode(text), JSONValue(JSONUnrepresentableNumber{text})) << text;
        EXPECT_EQ(compact.encode(JSONValue(JSONUnrepresentableNumber{text})), text);
    }
}

TEST(JSONCodingTest, keepsEveryString) {
    const std::pair<std::string, std::string> table[] = {
        {R"("a/b")", "a/b"},
        {R"("\"\\\b\f\n\r\t")", "\"\\\b\f\n\r\t"},
        {R"("\u0000\u001f")", "\0\x1F"s},
        {"\"\x7F é 😀 \xEF\xBF\xBF\"", "\x7F é 😀 \xEF\xBF\xBF"},
        {R"("")", ""},
    };
    for (const auto& [text, content] : table) {
        EXPECT_EQ(decoder.decode(text), JSONValue(content)) << text;
        EXPECT_EQ(compact.encode(JSONValue(content)), text);
    }
    EXPECT_EQ(decoder.decode(R"("\/ \u00e9 \ud83d\ude00 \u00C9")"), JSONValue("/ é 😀 É"));
}

TEST(JSONCodingTest, refusesWhatIsNotOneWholeJSONValue) {
    std::istringstream damaged(R"~(
        [ ] } [} {] ][ ],[ 1],[2 [1,] [,1] [1,,2] [:] [true:1] ["a":1] [1]] {"a"} {"a":} {"a":1,} {,"a":1} {a:1} {1:2}
        {"a":"b":1} {"a":1}} {"a":nul} nul nulll True NaN Infinity - +1 01 -01 1. .5 1e 1e+ 0x10 1.0abc 1, 1,2 --1 1_000
        "a "\" "\x" "\u12" "\u12G4" "\ud800" "\udc00" "\ud800\u0041" "\ud800x" {"\ud800":1} 'a')~");
    for (std::string text; damaged >> text;)
        EXPECT_FALSE(decoder.decode(text)) << text;
    for (const auto& text : {""s, " \n"s, "[1 2]"s, R"({"a" 1})"s, R"({"a":1 "b":2})"s, "1 2"s, "{} {}"s, "[] null"s,
                             "tru e"s, "[1] // note"s, "1\f"s, "[true\v]"s, "\f1"s, "\"a\nb\""s, "\"\x01\""s}) {
        EXPECT_FALSE(decoder.decode(text)) << text;
    }
    for (const auto& text : {"\"\xFF\""s, "\"\xC0\x80\""s, "\"\xED\xA0\x80\""s, "{\"\xFF\":1}"s, "[1]\0"s, "\0"s,
                             "\xFF"s, "\xEF\xBB\xBF[]"s}) {
        EXPECT_FALSE(decoder.decode(text)) << testing::PrintToString(text);
    }

    const std::string whole = R"({"a":[1,2.5,"x\u00e9",{"b":null}],"c":{"d":true}})";
    ASSERT_TRUE(decoder.decode(whole));
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(decoder.decode(whole.substr(0, length))) << length;
}

TEST(JSONCodingTest, boundsTheDepthBothWays) {
    const auto nested = [](std::size_t levels) { return std::string(levels, '[') + std::string(levels, ']'); };
    const auto deepest = decoder.decode(nested(deepestJSON));
    ASSERT_TRUE(deepest);
    EXPECT_EQ(compact.encode(*deepest), nested(deepestJSON));
    EXPECT_FALSE(compact.encode(JSONValue(JSONArray{*deepest})));
    std::string objects;
    for (int level = 0; level < 100'000; ++level)
        objects += R"({"a":)";
    for (const auto& text : {nested(deepestJSON + 1), nested(1'000'000), std::string(1'000'000, '['), objects})
        EXPECT_FALSE(decoder.decode(text));
}

TEST(JSONCodingTest, writesSortedKeysOnLinesOfTheirOwn) {
    const JSONValue value(JSONObject{{"b", JSONArray{1, "x/y", JSONArray{}}}, {"a", JSONObject{}}, {"B", true}});
    EXPECT_EQ(compact.encode(value), R"({"B":true,"a":{},"b":[1,"x/y",[]]})");
    EXPECT_EQ(JSONCoding::encoder(JSONLayout::pretty).encode(value),
              "{\n  \"B\": true,\n  \"a\": {},\n  \"b\": [\n    1,\n    \"x/y\",\n    []\n  ]\n}");

    const auto repeated = decoder.decode(R"({"b":1,"a":2,"b":3})");
    ASSERT_TRUE(repeated);
    EXPECT_EQ(compact.encode(*repeated), R"({"a":2,"b":1,"b":3})");
    EXPECT_EQ(*repeated->as<JSONObject>()->find("b"), JSONValue(1));
}

TEST(JSONCodingTest, refusesToWriteWhatJSONCannotSay) {
    const JSONValue values[] = {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN(),
                                JSONDecimal{"1,5"}, JSONUnrepresentableNumber{""}, JSONObject{{"\xC3", 1}}};
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
