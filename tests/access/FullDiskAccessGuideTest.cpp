#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "access/FullDiskAccessGuide.h"
#include "access/SettingsPane.h"

namespace vostrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Guide = FullDiskAccessGuide;
using Relaunch = FullDiskAccessRelaunch;

TEST(FullDiskAccessGuideTest, knowsWhereTheUserStands) {
    struct Row {
        std::optional<bool> granted;
        Guide::Pane pane;
        Guide::State state;
    };
    for (const auto& row :
         {Row{std::nullopt, Guide::Pane::notOpened, Guide::State::notAsked},
          Row{false, Guide::Pane::notOpened, Guide::State::notAsked},
          Row{std::nullopt, Guide::Pane::opened, Guide::State::paneOpened},
          Row{false, Guide::Pane::opened, Guide::State::paneOpened},
          Row{true, Guide::Pane::notOpened, Guide::State::on}, Row{true, Guide::Pane::opened, Guide::State::on}}) {
        EXPECT_EQ(Guide::state(row.granted, row.pane), row.state);
        EXPECT_EQ(Guide::offersRelaunch(row.state), row.state == Guide::State::paneOpened);
    }
}

TEST(FullDiskAccessGuideTest, givesThreeStepsUntilItIsOn) {
    const auto before = Guide::steps(Guide::State::notAsked);
    const auto after = Guide::steps(Guide::State::paneOpened);
    ASSERT_EQ(before.size(), 3U);
    EXPECT_THAT(after, ElementsAre(before[0], before[1],
                                   "Come back to Vostrel. If this page still says Full Disk Access is off, press the "
                                   "relaunch button below, because the change may only take effect when Vostrel starts "
                                   "again."));
    EXPECT_NE(before[2], after[2]);
    EXPECT_THAT(Guide::steps(Guide::State::on), IsEmpty());
    EXPECT_TRUE(Guide::dragHint.ends_with(Guide::showInFinderButton));
    EXPECT_TRUE(addresses(SettingsPane::fullDiskAccess).front().ends_with("extension?Privacy_AllFiles"));
}

TEST(FullDiskAccessGuideTest, relaunchesOnceHoweverOftenItIsPressed) {
    Relaunch relaunch;
    EXPECT_EQ(relaunch.finished(Relaunch::Start::started), std::nullopt);
    EXPECT_TRUE(relaunch.begin());
    EXPECT_FALSE(relaunch.begin());
    EXPECT_FALSE(Guide::isRelaunchButtonEnabled(relaunch.phase()));
    EXPECT_EQ(relaunch.finished(Relaunch::Start::started), Relaunch::Step::quitThisCopy);
}

TEST(FullDiskAccessGuideTest, resumesAndSaysSoWhenTheNewCopyDoesNotStart) {
    Relaunch relaunch;
    ASSERT_TRUE(relaunch.begin());
    EXPECT_EQ(Guide::relaunchNotice(relaunch.phase()), std::nullopt);
    EXPECT_EQ(relaunch.finished(Relaunch::Start::failed), Relaunch::Step::resumeWalks);
    EXPECT_EQ(relaunch.phase(), Relaunch::Phase::failed);
    EXPECT_TRUE(Guide::relaunchNotice(relaunch.phase()).has_value());
    EXPECT_EQ(relaunch.finished(Relaunch::Start::started), std::nullopt);
    EXPECT_TRUE(relaunch.begin());
}

}  // namespace
}  // namespace vostrel
