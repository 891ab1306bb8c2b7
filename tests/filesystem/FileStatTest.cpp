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
    const std::tuple<const char*, bool, bool, bool> rows[] = {
        {"file", false, false, true},     {"folder", false, true, false}, {"link", true, false, false},
        {"dangling", true, false, false}, {"pipe", false, false, false},
    };
    for (const auto& [name, isSymlink, isDirectory, isRegularFile] : rows) {
        struct stat expected{};
        ASSERT_EQ(::lstat((home / name).c_str(), &expected), 0);
        const FileIdentity identity{FileStat::read(home / name)->identity.device, expected.st_ino};
        EXPECT_EQ(FileStat::read(home / name), (FileStat{identity, isSymlink, isDirectory, isRegularFile})) << name;
    }
    EXPECT_EQ(FileStat::read(home / "nowhere"), std::nullopt);
    EXPECT_EQ(FileStat::read(home / "file/below"), std::nullopt);
    EXPECT_EQ(FileStat::read(home / "link")->identity.device, FileStat::read(home / "file")->identity.device);
    EXPECT_NE(FileStat::read(home / "file")->identity.device, FileStat::read("/proc")->identity.device);
}

TEST(FileStatTest, tellsOwnerAndPermissions) {
    const TemporaryFolder home;
    const auto folder = home.makeFolder("folder");
    ASSERT_EQ(::chmod(folder.c_str(), 01755), 0);
    EXPECT_EQ(FileStat::ownership(folder), (FileStat::Ownership{::getuid(), 01755}));
    EXPECT_EQ(FileStat::ownership(home / "nowhere"), std::nullopt);
}

}  // namespace
}  // namespace vostrel
