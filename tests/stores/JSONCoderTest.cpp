#include <gtest/gtest.h>

#include "stores/JSONCoding.h"

namespace vostrel {
namespace {

using namespace std::string_literals;

template <class Value>
Decoded<Value> read(std::string_view text) {
    return JSONCoding::decoder().decode<Value>(text);
}

template <class Value>
std::string written(const Value& value) {
    return JSONCoding::encoder(JSONLayout::compact).encode(value).value();
}

TEST(JSONCoderTest, readsWholeNumbersHoweverTheyAreWritten) {
    EXPECT_EQ(read<int>("1.20e1"), 12);
    EXPECT_EQ(read<int>("-0"), 0);
    EXPECT_EQ(read<std::int32_t>("-2147483648"), INT32_MIN);
    EXPECT_EQ(read<std::uint64_t>("0.18446744073709551615e20"), UINT64_MAX);
    EXPECT_FALSE(read<std::uint64_t>("-1"));
    for (const auto* text : {"2147483648", "1e400", "1e20", "0.5", "1e-1", "true", "\"1\"", "1e9999999999999999999"})
        EXPECT_FALSE(read<std::int32_t>(text)) << text;
    EXPECT_EQ(read<double>("0.1000000000000000055511151231257827"), 0.1);
    EXPECT_EQ(read<double>("1e-400"), 0.0);
    EXPECT_EQ(read<double>("2.4703282292062328e-324"), 5e-324);
    EXPECT_FALSE(read<double>("1e400"));
}

TEST(JSONCoderTest, keepsPathsThatAreNotUTF8) {
    for (const auto& bytes : {"/tmp/é"s, "/tmp/\xFF\xC3/e\xCC\x81"s, "\xED\xA0\x80"s, ""s, "/a\nb"s})
        EXPECT_EQ(read<std::filesystem::path>(written(std::filesystem::path(bytes))), std::filesystem::path(bytes));
    EXPECT_EQ(written(std::filesystem::path("a\xFF")), R"("a\u0000ff")");
    EXPECT_FALSE(read<std::filesystem::path>(R"("a\u0000b")"));
}

TEST(JSONCoderTest, dropsUnreadableElementsOnlyWhereAFieldSaysSo) {
    const auto value = JSONCoding::decoder().decode(R"([1,"2",3,3])").value();
    EXPECT_EQ(JSONCoder<std::set<int>>::decodeReadable(value), (std::set{1, 3}));
    EXPECT_EQ(JSONCoder<std::vector<int>>::decodeReadable(value), (std::vector{1, 3, 3}));
    EXPECT_EQ(read<std::vector<int>>(R"([1,"2",3])").error().text(), "[1]: Expected a whole number, found a string.");
    EXPECT_FALSE(read<std::set<int>>(R"([1,"2",3])"));
}

}  // namespace
}  // namespace vostrel
