#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "access/FullDiskAccess.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

using testing::ElementsAre;

class FullDiskAccessTest : public testing::Test {
protected:
    bool check() {
        tried.clear();
        const SystemFullDiskAccess access(
            SystemFullDiskAccess::probes(folder.path() / "home", folder.path() / "root"),
            [this](const std::filesystem::path& path) { tried.push_back(path.filename().native()); });
        return access.hasFullDiskAccess();
    }

    const TemporaryFolder folder;
    const std::string database = "root/Library/Application Support/com.apple.TCC/TCC.db";
    std::vector<std::string> tried;
};

TEST_F(FullDiskAccessTest, triesTheDatabaseThenSafariThenMail) {
    std::vector<std::string> descriptions;
    for (const auto& probe : SystemFullDiskAccess::probes("/Users/ann", "/"))
        descriptions.push_back(probe.description());
    EXPECT_THAT(descriptions, ElementsAre("open /Library/Application Support/com.apple.TCC/TCC.db",
                                          "list /Users/ann/Library/Safari", "list /Users/ann/Library/Mail"));
}

TEST_F(FullDiskAccessTest, isNotGrantedWhenEveryPlaceIsMissing) {
    EXPECT_FALSE(check());
    EXPECT_THAT(tried, ElementsAre("TCC.db", "Safari", "Mail"));
}

TEST_F(FullDiskAccessTest, goesByTheFirstPlaceThatSaysAnything) {
    folder.makeFile("home/Library/Safari/History.db");
    EXPECT_TRUE(check());
    EXPECT_THAT(tried, ElementsAre("TCC.db", "Safari"));

    folder.makeFile(database);
    EXPECT_TRUE(check());
    EXPECT_THAT(tried, ElementsAre("TCC.db"));
}

TEST_F(FullDiskAccessTest, countsAnEmptyFolderAsRead) {
    folder.makeFolder("home/Library/Mail");
    folder.makeFile("home/Library/Safari");  // not a folder: says nothing
    EXPECT_TRUE(check());
    EXPECT_THAT(tried, ElementsAre("TCC.db", "Safari", "Mail"));
}

TEST_F(FullDiskAccessTest, endsWithNoAtTheFirstRefusal) {
    folder.makeFile("home/Library/Safari/History.db");
    folder.makeLink(database, "/dev/null");  // a link is refused, whoever asks
    EXPECT_FALSE(check());
    EXPECT_THAT(tried, ElementsAre("TCC.db"));
}

}  // namespace
}  // namespace vostrel
