#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <set>

#include "filesystem/LinkSet.h"

namespace vostrel {
namespace {

TEST(LinkSetTest, knowsAFileByDeviceAndNumber) {
    LinkSet links;
    constexpr auto largest = std::numeric_limits<std::uint64_t>::max();
    for (const FileIdentity file : {FileIdentity{0, 0}, {0, 1}, {1, 0}, {-1, 0}, {-1, largest}, {1, largest}}) {
        EXPECT_TRUE(links.insert(file)) << file.device << " " << file.inode;
        EXPECT_FALSE(links.insert(file)) << file.device << " " << file.inode;
    }
}

TEST(LinkSetTest, agreesWithAPlainSetHoweverFullItGets) {
    std::mt19937_64 random(1);
    LinkSet links;
    std::set<FileIdentity> plain;
    for (int step = 0; step < 50'000; ++step) {
        // Few devices and numbers close together, as a disk gives them, and some from anywhere.
        const std::uint64_t inode = step % 3 == 0 ? random() : random() % 20'000;
        const FileIdentity file{static_cast<std::int32_t>(random() % 3), inode};
        ASSERT_EQ(links.insert(file), plain.insert(file).second);
    }
}

}  // namespace
}  // namespace vostrel
