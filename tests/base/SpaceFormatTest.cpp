#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

#include "base/SpaceFormat.h"

namespace vostrel {
namespace {

TEST(SpaceFormatTest, writesAmountsAsPeopleReadThem) {
    const std::pair<std::int64_t, const char*> table[] = {
        {-5, "0 MB"},
        {0, "0 MB"},
        {1, "less than 1 MB"},
        {999'999, "less than 1 MB"},
        {1'000'000, "1.0 MB"},
        {9'949'999, "9.9 MB"},
        {9'950'000, "10 MB"},
        {10'500'000, "11 MB"},
        {999'499'999, "999 MB"},
        {999'600'000, "1.0 GB"},
        {999'500'000'000, "1.0 TB"},
        {999'500'000'000'000, "1.0 PB"},
        {INT64_MAX, "9223 PB"},
    };
    for (const auto& [count, text] : table)
        EXPECT_EQ(SpaceFormat::bytes(count), text) << count;
    EXPECT_EQ(SpaceFormat::spokenBytes(0), "0 megabytes");
    EXPECT_EQ(SpaceFormat::spokenBytes(1), "less than 1 megabyte");
    EXPECT_EQ(SpaceFormat::spokenBytes(1'500'000'000), "1.5 gigabytes");
    EXPECT_EQ(SpaceFormat::upTo(1'000'000), "up to 1.0 MB");
    EXPECT_EQ(SpaceFormat::upTo(999'999), "less than 1 MB");
    EXPECT_EQ(SpaceFormat::upTo(0), "0 MB");
}

TEST(SpaceFormatTest, neverSaysMoreIsFreeThanThereIs) {
    const std::pair<std::int64_t, const char*> table[] = {
        {-1, "0 MB"},
        {999'999, "less than 1 MB"},
        {9'999'999, "9.9 MB"},
        {10'999'999, "10 MB"},
        {999'999'999, "999 MB"},
        {99'900'000'000, "99 GB"},
        {1'000'000'000'000, "1.0 TB"},
        {INT64_MAX, "9223 PB"},
    };
    for (const auto& [count, text] : table)
        EXPECT_EQ(SpaceFormat::bytesFloor(count), text) << count;
    const std::pair<double, const char*> shares[] = {{-0.5, "0%"}, {0, "0%"},           {0.0099, "less than 1%"},
                                                     {0.01, "1%"}, {0.29, "29%"},       {0.1999, "19%"},
                                                     {1, "100%"},  {std::nan(""), "0%"}};
    for (const auto& [share, text] : shares)
        EXPECT_EQ(SpaceFormat::percent(share), text) << share;
}

}  // namespace
}  // namespace vostrel
