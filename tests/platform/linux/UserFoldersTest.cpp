#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/UserFolders.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(UserFoldersTest, readsTheFoldersThatTheDesktopNames) {
    const TemporaryFolder home;
    EXPECT_THAT(userFolders(home.path(), {}), IsEmpty());
    home.makeFile(".config/user-dirs.dirs",
                  "# This file is written by xdg-user-dirs-update\n"
                  " \tXDG_DESKTOP_DIR = \"$HOME/Schreib tisch\" # \"that is\"\n"
                  "XDG_DOCUMENTS_DIR=\t\"/data/My \\\"own\\\" docs\"\n"
                  "XDG_DOWNLOAD_DIR=\"$HOME/Downloads\"\n"
                  "XDG_MUSIC_DIR=\"Musik\"\n"
                  "XDG_VIDEOS_DIR=$HOME/Videos\n"
                  "XDG_PICTURES_DIR=\"\n"
                  "XDG_PUBLICSHARE_DIR=\"$HOME/\"");
    EXPECT_THAT(userFolders(home.path(), {}),
                ElementsAre(UserFolder{UserFolder::Part::desktop, home.path() / "Schreib tisch"},
                            UserFolder{UserFolder::Part::documents, "/data/My \"own\" docs"},
                            UserFolder{UserFolder::Part::publicShare, home.path().native() + "/"}));
}

TEST(UserFoldersTest, readsTheSettingsFolderThatTheEnvironmentNamesTooAndOnlyPlainFiles) {
    const TemporaryFolder home;
    const UserFolder inUsual{UserFolder::Part::desktop, home.path() / "Tisch"};
    const UserFolder inNamed{UserFolder::Part::desktop, home.path() / "Bureau"};
    home.makeFile(".config/user-dirs.dirs", "XDG_DESKTOP_DIR=\"$HOME/Tisch\"\n" + std::string(1 << 21, '#'));
    const auto named = home.makeFile("named/user-dirs.dirs", "XDG_DESKTOP_DIR=\"$HOME/Bureau\"");
    const Environment environment{{"XDG_CONFIG_HOME", named.parent_path()}};
    EXPECT_THAT(userFolders(home.path(), environment), ElementsAre(inUsual, inNamed));
    EXPECT_THAT(userFolders(home.path(), {{"XDG_CONFIG_HOME", "named"}}), ElementsAre(inUsual));

    std::filesystem::remove(named);
    ASSERT_EQ(::mkfifo(named.c_str(), 0600), 0);
    EXPECT_THAT(userFolders(home.path(), environment), ElementsAre(inUsual));
}

}  // namespace
}  // namespace vostrel
