#include <gtest/gtest.h>

#include "access/FullDiskAccessGuide.h"
#include "access/SettingsPane.h"

namespace vostrel {
namespace {

using Guide = FullDiskAccessGuide;
using Relaunch = FullDiskAccessRelaunch;

TEST(FullDiskAccessGuideTest, knowsWhereTheUserStandsAndWhatToDoNext) {
    using enum Guide::State;
    using enum Guide::Pane;
    for (const auto& [granted, pane, state] : {std::tuple(std::optional<bool>(), notOpened, notAsked),
                                               {false, notOpened, notAsked},
                                               {false, opened, paneOpened},
                                               {true, notOpened, on},
                                               {true, opened, on}}) {
        EXPECT_EQ(Guide::state(granted, pane), state);
        EXPECT_EQ(Guide::offersRelaunch(state), state == paneOpened);
        EXPECT_EQ(Guide::steps(state).size(), state == on ? 0 : 3);
    }
    EXPECT_TRUE(Guide::steps(paneOpened).at(2).contains("press the relaunch button below"));
    EXPECT_TRUE(addresses(SettingsPane::fullDiskAccess).front().ends_with("extension?Privacy_AllFiles"));
}

TEST(FullDiskAccessGuideTest, relaunchesOnceAndResumesWhenTheNewCopyDoesNotStart) {
    Relaunch relaunch;
    EXPECT_EQ(relaunch.finished(Relaunch::Start::started), std::nullopt);
    EXPECT_TRUE(relaunch.begin());
    EXPECT_FALSE(relaunch.begin());
    EXPECT_FALSE(Guide::isRelaunchButtonEnabled(relaunch.phase()));
    EXPECT_EQ(Guide::relaunchNotice(relaunch.phase()), std::nullopt);
    EXPECT_EQ(relaunch.finished(Relaunch::Start::failed), Relaunch::Step::resumeWalks);
    EXPECT_TRUE(Guide::relaunchNotice(relaunch.phase()).has_value());
    EXPECT_EQ(relaunch.finished(Relaunch::Start::started), std::nullopt);
    EXPECT_TRUE(relaunch.begin());
    EXPECT_EQ(relaunch.finished(Relaunch::Start::started), Relaunch::Step::quitThisCopy);
}

}  // namespace
}  // namespace vostrel
