#include <gtest/gtest.h>

#include "monitor/SettingsKeeper.h"

namespace vostrel {
namespace {

using enum SettingsKeeper::Update;

/// Saves the settings, or fails to while the disk is full.
struct Disk {
    bool isFull = false;
    std::optional<AppSettings> saved;

    std::expected<void, StoreError> operator()(const AppSettings& settings) {
        if (isFull) return std::unexpected(StoreError{});
        saved = settings;
        return {};
    }
};

void pause(AppSettings& settings) {
    settings.automaticCleaningPaused = true;
}
void unpause(AppSettings& settings) {
    settings.automaticCleaningPaused = false;
}
void muteAlerts(AppSettings& settings) {
    settings.notificationsEnabled = false;
}

TEST(SettingsKeeperTest, givesUntrustedSettingsToNobodyUntilTheUserDecides) {
    SettingsLoadResult unreadablePause;
    unreadablePause.settings.pauseSettingUnreadable = true;
    for (const auto& loaded :
         {SettingsLoadResult{.settings = {}, .recoveredFromCorruption = true, .movedAsideTo = {}},
          SettingsLoadResult{.settings = {}, .movedAsideTo = {}, .notRead = SystemError{}}, unreadablePause}) {
        SettingsKeeper keeper(loaded);
        Disk disk;
        const auto save = std::ref(disk);
        EXPECT_TRUE(keeper.settings().automaticCleaningPaused);
        EXPECT_FALSE(keeper.settings().pauseSettingUnreadable);
        EXPECT_EQ(keeper.update(pause, save), unchanged) << "which says nothing of whether it may run";
        EXPECT_FALSE(disk.saved);
        EXPECT_EQ(keeper.update(muteAlerts, save), saved);
        EXPECT_FALSE(keeper.forAutomation());
        EXPECT_EQ(keeper.update(unpause, save), saved);
        EXPECT_EQ(keeper.forAutomation(), disk.saved);
    }
    EXPECT_EQ(SettingsKeeper(SettingsLoadResult{}).forAutomation(), AppSettings());
}

TEST(SettingsKeeperTest, endsAPauseOnlyWhenThatIsOnDisk) {
    SettingsLoadResult loaded;
    loaded.recoveredFromCorruption = true;
    SettingsKeeper keeper(loaded);
    Disk disk{.isFull = true, .saved = {}};
    const auto save = std::ref(disk);
    EXPECT_EQ(keeper.update(unpause, save), notSavedStillPaused);
    EXPECT_TRUE(keeper.settings().automaticCleaningPaused);
    EXPECT_FALSE(keeper.trusted());
    EXPECT_FALSE(keeper.retrySave(save));
    EXPECT_TRUE(keeper.needsSave());
    disk.isFull = false;
    EXPECT_TRUE(keeper.retrySave(save));
    EXPECT_TRUE(disk.saved->automaticCleaningPaused);
    disk.saved.reset();
    EXPECT_TRUE(keeper.retrySave(save));
    EXPECT_FALSE(disk.saved) << "there was nothing left to save";
}

}  // namespace
}  // namespace vostrel
