#include <gtest/gtest.h>

#include <cerrno>

#include "monitor/VolumeCapacityReading.h"

namespace vostrel {
namespace {

TEST(VolumeCapacityReadingTest, multipliesBlocksWithoutOverflow) {
    EXPECT_EQ(capacityOf({.total = 10, .available = 3, .size = 4096}), (VolumeCapacity{40'960, 12'288, std::nullopt}));
    EXPECT_EQ(capacityOf({.total = UINT64_MAX, .available = 1ULL << 52U, .size = 4096}),
              (VolumeCapacity{INT64_MAX, INT64_MAX, std::nullopt}));
    EXPECT_EQ((VolumeCapacity{10, 20, std::nullopt}).used(), 0);
    EXPECT_EQ(VolumeCapacity().displayedFreeFraction(), 0);
}

TEST(VolumeCapacityReadingTest, asksTheSystem) {
    const SystemVolumeCapacityReader reader;
    const auto capacity = reader.read("/", ImportantFigure::included);
    ASSERT_TRUE(capacity);
    EXPECT_EQ(static_cast<std::uintmax_t>(capacity->total), std::filesystem::space("/").capacity);
    EXPECT_EQ(reader.read("/absent", ImportantFigure::leftOut).error(), VolumeCapacityError{ENOENT});
}

}  // namespace
}  // namespace vostrel
