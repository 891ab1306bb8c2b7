#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "access/FullDiskAccess.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

using testing::ElementsAre;

TEST(FullDiskAccessTest, goesByTheFirstPlaceThatSaysAnything) {
    const TemporaryFolder folder;
    std::vector<std::string> tried;
    const SystemFullDiskAccess access(
        SystemFullDiskAccess::probes(folder / "home", folder / "root"),
        [&](const std::filesystem::path& path) { tried.push_back(path.lexically_relative(folder.path())); });
    const std::string database = "root/Library/Application Support/com.apple.TCC/TCC.db";
    const std::string safari = "home/Library/Safari";
    const std::string mail = "home/Library/Mail";
    const auto isGranted = [&] {
        tried.clear();
        return access.hasFullDiskAccess();
    };

    EXPECT_FALSE(isGranted()) << "when every place is missing";
    EXPECT_THAT(tried, ElementsAre(database, safari, mail));

    folder.makeFolder(mail);
    folder.makeFile(safari);  // not a folder: says nothing
    EXPECT_TRUE(isGranted()) << "an empty folder was read";
    EXPECT_THAT(tried, ElementsAre(database, safari, mail));

    folder.makeLink(database, "/dev/null");  // a link is refused, whoever asks
    EXPECT_FALSE(isGranted());
    EXPECT_THAT(tried, ElementsAre(database));

    std::filesystem::remove(folder / database);
    folder.makeFile(database);
    EXPECT_TRUE(isGranted());
    EXPECT_THAT(tried, ElementsAre(database));
}

}  // namespace
}  // namespace vostrel
