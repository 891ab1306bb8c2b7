#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "filesystem/FileStat.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

TEST(FileStatTest, tellsWhatIsThereWithoutFollowingALink) {
    const TemporaryFolder home;
    home.makeFile("file");
    home.makeFolder("folder");
    home.makeLink("link", home / "file");
    home.makeLink("dangling", home / "nowhere");
    ASSERT_EQ(::mkfifo((home / "pipe").c_str(), 0600), 0);
    const auto device = FileStat::read(home.path())->identity.device;
    for (const char* name : {"file", "folder", "link", "dangling", "pipe"}) {
        struct stat found{};
        ASSERT_EQ(::lstat((home / name).c_str(), &found), 0);
        const FileStat expected{
            {device, found.st_ino}, S_ISLNK(found.st_mode), S_ISDIR(found.st_mode), S_ISREG(found.st_mode)};
        EXPECT_EQ(FileStat::read(home / name), expected) << name;
        const auto mode = static_cast<std::uint16_t>(found.st_mode & 07777U);
        EXPECT_EQ(FileStat::ownership(home / name), (FileStat::Ownership{::getuid(), mode})) << name;
    }
    EXPECT_EQ(FileStat::read(home / "file/below"), std::nullopt);
    EXPECT_EQ(FileStat::ownership(home / "nowhere"), std::nullopt);
    EXPECT_NE(FileStat::read("/proc")->identity.device, device);
}

}  // namespace
}  // namespace vostrel
