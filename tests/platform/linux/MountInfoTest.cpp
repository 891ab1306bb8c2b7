#include <gtest/gtest.h>

#include "platform/linux/MountInfo.h"

namespace vostrel {
namespace {

TEST(MountInfoTest, readsALineOfTheKernelsTable) {
    struct Row {
        std::string_view line;
        std::optional<MountInfo> expected;
    };
    const Row rows[] = {
        {"36 35 98:0 /mnt1 /mnt2 rw,noatime master:1 - ext3 /dev/root rw,errors=continue",
         MountInfo{36, "/mnt2", "ext3", "/dev/root"}},
        {"27 1 254:0 / / rw,relatime - ext4 /dev/vda rw", MountInfo{27, "/", "ext4", "/dev/vda"}},
        {R"(41 27 0:50 / /media/My\040Disk\134\011x rw shared:7 master:2 - fuse.sshfs me@host:/a\040b rw)",
         MountInfo{41, "/media/My Disk\\\tx", "fuse.sshfs", "me@host:/a b"}},
        {R"(42 27 0:51 / /a\04 rw - tmpfs none rw)", MountInfo{42, R"(/a\04)", "tmpfs", "none"}},
        {"", std::nullopt},
        {"36 35 98:0 / /mnt rw master:1", std::nullopt},
        {"36 35 98:0 / /mnt rw - ext4", std::nullopt},
        {"x6 35 98:0 / /mnt rw - ext4 /dev/sda rw", std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(parseMountInfo(row.line), row.expected) << row.line;
}

}  // namespace
}  // namespace vostrel
