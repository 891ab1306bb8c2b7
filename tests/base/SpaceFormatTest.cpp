#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "base/SpaceFormat.h"

namespace vostrel {
namespace {

TEST(SpaceFormatTest, writesAmountsAsPeopleReadThem) {
    struct Row {
        std::int64_t count;
        std::string shown, spoken;
    };
    const Row rows[] = {
        {-5, "0 MB", "0 megabytes"},
        {0, "0 MB", "0 megabytes"},
        {1, "less than 1 MB", "less than 1 megabyte"},
        {999'999, "less than 1 MB", "less than 1 megabyte"},
        {1'000'000, "1.0 MB", "1.0 megabytes"},
        {1'500'000'000, "1.5 GB", "1.5 gigabytes"},
        {9'949'999, "9.9 MB", "9.9 megabytes"},
        {9'950'000, "10 MB", "10 megabytes"},
        {10'500'000, "11 MB", "11 megabytes"},
        {999'499'999, "999 MB", "999 megabytes"},
        {999'600'000, "1.0 GB", "1.0 gigabytes"},
        {1'000'000'000, "1.0 GB", "1.0 gigabytes"},
        {999'500'000'000, "1.0 TB", "1.0 terabytes"},
        {999'500'000'000'000, "1.0 PB", "1.0 petabytes"},
        {1'999'600'000'000'000'000, "2000 PB", "2000 petabytes"},
        {std::numeric_limits<std::int64_t>::max(), "9223 PB", "9223 petabytes"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(SpaceFormat::bytes(row.count), row.shown);
        EXPECT_EQ(SpaceFormat::spokenBytes(row.count), row.spoken);
    }
}

TEST(SpaceFormatTest, saysUpToOnlyOfAmountsThatHaveANumber) {
    EXPECT_EQ(SpaceFormat::upTo(1'000'000), "up to 1.0 MB");
    EXPECT_EQ(SpaceFormat::upTo(999'999), "less than 1 MB");
    EXPECT_EQ(SpaceFormat::upTo(0), "0 MB");
}

}  // namespace
}  // namespace vostrel
