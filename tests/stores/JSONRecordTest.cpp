#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stores/JSONCoding.h"
#include "stores/JSONRecord.h"

namespace vostrel {
namespace {

enum class Colour { red, green, unknown };
enum class Shape { round, square };

struct Circle {
    double radius = 0;
    friend bool operator==(const Circle&, const Circle&) = default;
};
struct Nothing {
    friend bool operator==(const Nothing&, const Nothing&) = default;
};
using Figure = std::variant<Circle, Nothing>;

struct Sample {
    std::string name;
    std::optional<std::int64_t> size = 7;
    Shape shape = Shape::round;
    Colour colour = Colour::red;
    Figure figure = Nothing{};
    std::vector<std::string> words{"default"};
    std::set<Shape> shapes;
    std::map<std::string, Date> dates;
    std::vector<Sample> children;

    friend bool operator==(const Sample&, const Sample&) = default;
};

}  // namespace

template <>
struct JSONNames<Colour> {
    static constexpr std::array list{JSONName{Colour::red, "red"}, JSONName{Colour::green, "green"},
                                     JSONName{Colour::unknown, "unknown"}};
    static constexpr Colour unknown = Colour::unknown;
};
template <>
struct JSONNames<Shape> {
    static constexpr std::array list{JSONName{Shape::round, "round"}, JSONName{Shape::square, "square"}};
};
template <>
struct JSONFields<Circle> {
    static constexpr std::array list{jsonField<&Circle::radius>("radius")};
};
template <>
struct JSONCases<Figure> {
    static constexpr auto names = std::to_array<std::string_view>({"circle", "nothing"});
};
template <>
struct JSONFields<Sample> {
    static constexpr std::array list{
        jsonField<&Sample::name>("name"),
        jsonField<&Sample::size>("size"),
        jsonField<&Sample::shape, JSONReading::defaulted>("shape"),
        jsonField<&Sample::colour, JSONReading::defaulted>("colour"),
        jsonField<&Sample::figure, JSONReading::defaulted>("figure"),
        jsonField<&Sample::words, JSONReading::lenient>("words"),
        jsonField<&Sample::shapes, JSONReading::eachReadable>("shapes"),
        jsonField<&Sample::dates, JSONReading::eachReadable>("dates"),
        jsonField<&Sample::children, JSONReading::defaulted>("children"),
    };
    static std::optional<std::string> settle(Sample& sample) {
        if (sample.name.empty()) return "The name must not be empty.";
        if (sample.name == "Ann") sample.name = "Anna";
        return std::nullopt;
    }
};

namespace {

Sample named(std::string name) {
    Sample sample;
    sample.name = std::move(name);
    sample.size = std::nullopt;
    return sample;
}

template <class Value = Sample>
Decoded<Value> read(std::string_view text) {
    return JSONCoding::decoder().decode<Value>(text);
}

TEST(JSONRecordTest, writesAndReadsEveryField) {
    Sample sample{"Bob", 5, Shape::square, Colour::green, Circle{1.5}, {"a", "b"}, {}, {{"x", Date()}}, {named("c")}};
    sample.shapes = {Shape::round, Shape::square};
    const auto text = JSONCoding::encoder(JSONLayout::compact).encode(sample);
    EXPECT_EQ(
        text,
        R"({"children":[{"children":[],"colour":"red","dates":{},"figure":{"type":"nothing"},"name":"c",)"
        R"("shape":"round","shapes":[],"words":["default"]}],"colour":"green","dates":{"x":"1970-01-01T00:00:00.000Z"},)"
        R"("figure":{"radius":1.5,"type":"circle"},"name":"Bob","shape":"square","shapes":["round","square"],)"
        R"("size":5,"words":["a","b"]})");
    EXPECT_EQ(read(*text), sample);
}

TEST(JSONRecordTest, readsAbsentAndUnreadableFieldsAsEachFieldSays) {
    for (const char* text : {R"({"name":"Bob"})", R"({"name":"Bob","words":["a",1]})", R"({"name":"Bob","dates":[]})",
                             R"({"name":"Bob","size":null,"shape":null,"words":null,"dates":null,"else":1})"})
        EXPECT_EQ(read(text), named("Bob")) << text;
    EXPECT_EQ(read(R"({"name":"Bob","colour":"blue"})")->colour, Colour::unknown);
    EXPECT_EQ(read(R"({"name":"Ann"})")->name, "Anna");
    const auto some =
        read(R"({"name":"Bob","shapes":["oval","square",3],"dates":{"a":"x","b":"1970-01-01T00:00:00Z"}})");
    EXPECT_EQ(some->shapes, std::set{Shape::square});
    EXPECT_EQ(some->dates, (std::map<std::string, Date>{{"b", Date()}}));
}

TEST(JSONRecordTest, saysWhatIsWrongAndWhere) {
    const std::vector<std::pair<std::string, std::string>> faults{
        {R"([])", "Expected an object, found a list."},
        {R"({})", R"(The key "name" is missing.)"},
        {R"({"name":null})", "name: Expected a string, found null."},
        {R"({"name":""})", "The name must not be empty."},
        {R"({"name":"Bob","else":1,"else":2})", R"(The key "else" is there twice.)"},
        {R"({"name":"Bob","size":"5"})", "size: Expected a whole number, found a string."},
        {R"({"name":"Bob","size":1.5})", "size: 1.5 is not a whole number that fits here."},
        {R"({"name":"Bob","size":9223372036854775808})", "size: 9223372036854775808 does not fit here."},
        {R"({"name":"Bob","shape":"oval"})", R"(shape: "oval" is not a known word here.)"},
        {R"({"name":"Bob","figure":{}})", R"(figure: The key "type" is missing.)"},
        {R"({"name":"Bob","figure":{"type":3}})", "figure.type: Expected a string, found a number."},
        {R"({"name":"Bob","figure":{"type":"circle","radius":true}})",
         "figure.radius: Expected a number, found a boolean."},
        {R"({"name":"Bob","children":[{"name":"A"},{"name":2}]})",
         "children[1].name: Expected a string, found a number."},
    };
    for (const auto& [text, message] : faults) {
        const auto sample = read(text);
        ASSERT_FALSE(sample) << text;
        EXPECT_EQ(sample.error().text(), message);
    }
}

TEST(JSONRecordTest, readsWholeNumbersHoweverTheyAreWritten) {
    EXPECT_EQ(read<int>("1.20e1"), 12);
    EXPECT_EQ(read<int>("-0"), 0);
    EXPECT_EQ(read<std::int32_t>("-2147483648"), INT32_MIN);
    EXPECT_EQ(read<std::uint64_t>("18446744073709551615"), UINT64_MAX);
    EXPECT_EQ(read<std::uint64_t>("0.18446744073709551615e20"), UINT64_MAX);
    for (const auto* text : {"2147483648", "1e400", "1e20", "0.5", "1e-1", "true", "\"1\"", "1e9999999999999999999"})
        EXPECT_FALSE(read<std::int32_t>(text)) << text;
    EXPECT_FALSE(read<std::uint64_t>("-1"));
    EXPECT_EQ(read<double>("0.1000000000000000055511151231257827"), 0.1);
    EXPECT_EQ(read<double>("1e-400"), 0.0);
    EXPECT_EQ(read<double>("2.4703282292062328e-324"), 5e-324);
    EXPECT_FALSE(read<double>("1e400"));
}

TEST(JSONRecordTest, keepsPathsThatAreNotUTF8) {
    using namespace std::string_literals;
    for (const auto& bytes : {"/tmp/é"s, "/tmp/\xFF\xC3/e\xCC\x81"s, "\xED\xA0\x80"s, ""s, "/a\nb"s}) {
        const std::filesystem::path path(bytes);
        const auto text = JSONCoding::encoder(JSONLayout::compact).encode(path);
        ASSERT_TRUE(text);
        EXPECT_EQ(read<std::filesystem::path>(*text), path) << *text;
    }
    EXPECT_EQ(encodeJSON(std::filesystem::path("a\xFF")), JSONValue("a\0ff"s));
    EXPECT_FALSE(read<std::filesystem::path>(R"("a\u0000b")"));
}

TEST(JSONRecordTest, namesWhatIsNoDateOrIdentifier) {
    EXPECT_EQ(read<Date>("\"yesterday\"").error().description, "Not an ISO 8601 date: yesterday");
    EXPECT_EQ(read<Uuid>("\"1\"").error().description, "Not a UUID: 1");
    const Uuid id = Uuid::random();
    EXPECT_EQ(decodeJSON<Uuid>(encodeJSON(id)), id);
}

}  // namespace
}  // namespace vostrel
