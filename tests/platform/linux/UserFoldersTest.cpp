#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/UserFolders.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(UserFoldersTest, readsTheFoldersThatTheDesktopNames) {
    const TemporaryFolder home;
    EXPECT_THAT(userFolders(home.path()), IsEmpty());
    home.makeFile(".config/user-dirs.dirs",
                  "# This file is written by xdg-user-dirs-update\n"
                  "XDG_DESKTOP_DIR=\"$HOME/Schreib tisch\"\n"
                  "XDG_DOCUMENTS_DIR=\"/data/My \\\"own\\\" docs\"\n"
                  "XDG_DOWNLOAD_DIR=\"$HOME/Downloads\"\n"
                  "XDG_MUSIC_DIR=\"Musik\"\n"
                  "XDG_VIDEOS_DIR=$HOME/Videos\n"
                  "XDG_PICTURES_DIR=\"\n"
                  "XDG_PUBLICSHARE_DIR=\"$HOME/\"");
    EXPECT_THAT(userFolders(home.path()),
                ElementsAre(UserFolder{UserFolder::Part::desktop, home.path() / "Schreib tisch"},
                            UserFolder{UserFolder::Part::documents, "/data/My \"own\" docs"},
                            UserFolder{UserFolder::Part::publicShare, home.path().native() + "/"}));
}

}  // namespace
}  // namespace vostrel
