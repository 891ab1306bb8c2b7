#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

#include "platform/FileRename.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

using testing::ElementsAre;

TEST(FileRenameTest, renamesOnlyToANameThatIsFree) {
    const TemporaryFolder folder;
    folder.makeFile("file", "kept");
    folder.makeFile("taken", "also kept");
    folder.makeFolder("folder");
    folder.makeLink("broken", "nowhere");
    for (const auto* name : {"taken", "folder", "broken"})
        EXPECT_EQ(renameExclusive(folder / "file", folder / name), std::unexpected(EEXIST)) << name;
    EXPECT_EQ(renameExclusive(folder / "absent", folder / "new").error(), ENOENT);
    EXPECT_THAT(folder.names(), ElementsAre("broken", "file", "folder", "taken"));
    EXPECT_EQ(folder.read("taken"), "also kept");

    EXPECT_TRUE(renameExclusive(folder / "file", folder / "free"));
    EXPECT_TRUE(renameExclusive(folder / "broken", folder / "folder/link"));
    EXPECT_EQ(folder.read("free"), "kept");
    EXPECT_THAT(folder.names("folder"), ElementsAre("link"));
}

}  // namespace
}  // namespace vostrel
