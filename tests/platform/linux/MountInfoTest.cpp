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
         MountInfo{36, "98:0", "/mnt1", "/mnt2", "ext3", "/dev/root"}},
        {"27 1 254:0 / / rw,relatime - ext4 /dev/vda rw", MountInfo{27, "254:0", "/", "/", "ext4", "/dev/vda"}},
        {R"(41 27 0:50 / /media/My\040Disk\134\011x rw shared:7 master:2 - fuse.sshfs me@host:/a\040b rw)",
         MountInfo{41, "0:50", "/", "/media/My Disk\\\tx", "fuse.sshfs", "me@host:/a b"}},
        {R"(42 27 0:51 / /a\04 rw - tmpfs none rw)", MountInfo{42, "0:51", "/", R"(/a\04)", "tmpfs", "none"}},
        {"", std::nullopt},
        {"36 35 98:0 / /mnt rw master:1", std::nullopt},
        {"36 35 98:0 / /mnt rw - ext4", std::nullopt},
        {"x6 35 98:0 / /mnt rw - ext4 /dev/sda rw", std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(parseMountInfo(row.line), row.expected) << row.line;
}

TEST(MountInfoTest, findsWhereElseAFolderIsShown) {
    const std::vector<MountInfo> mounts{
        {1, "8:1", "/", "/", "ext4", "/dev/sda1"},      {2, "8:2", "/", "/home", "ext4", "/dev/sda2"},
        {3, "8:2", "/ann/.ssh", "/mnt/x", "ext4", ""},  {4, "8:1", "/srv", "/mnt/x/deep", "ext4", ""},
        {5, "0:9", "/", "/home/bob", "tmpfs", "tmpfs"},
    };
    struct Row {
        std::uint64_t around;
        const char* path;
        std::vector<MountAlias> expected;
    };
    const Row rows[] = {
        {3, "/mnt/x", {{"", "/home/ann/.ssh"}}},
        {3, "/mnt/x/new/key", {{"", "/home/ann/.ssh/new/key"}}},
        {2, "/home/ann/.ssh/new", {{"", "/mnt/x/new"}}},
        {2, "/home/ann/.sshx", {}},
        {2, "/home/ann", {{".ssh", "/mnt/x"}}},
        {4, "/mnt/x/deep/a", {{"", "/srv/a"}}},
        {3, "/mnt/x/deep/a", {{"", "/home/ann/.ssh/deep/a"}}},
        {1, "/", {{"srv", "/mnt/x/deep"}}},
        {5, "/home/bob/a", {}},
        {9, "/srv", {}},
        {3, "/elsewhere", {}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(mountAliasesAmong(mounts, row.around, row.path), row.expected) << row.path;
}

}  // namespace
}  // namespace vostrel
