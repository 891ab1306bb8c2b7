#include <gtest/gtest.h>

#include <random>
#include <set>

#include "filesystem/LinkSet.h"

namespace vostrel {
namespace {

TEST(LinkSetTest, agreesWithAPlainSetHoweverFullItGets) {
    std::mt19937_64 random(1);
    LinkSet links;
    std::set<FileIdentity> plain;
    for (int step = 0; step < 50'000; ++step) {
        // Few devices and numbers close together, from 0 on, as a disk gives them, and some from anywhere.
        const auto device = static_cast<std::int32_t>(random() % 3) - 1;
        const std::uint64_t inode = step % 3 == 0 ? random() : random() % 5'000;
        ASSERT_EQ(links.insert({device, inode}), plain.insert({device, inode}).second) << device << " " << inode;
    }
}

}  // namespace
}  // namespace vostrel
