#include <gtest/gtest.h>

#include "access/FullDiskAccessGuide.h"

namespace vostrel {
namespace {

using Guide = FullDiskAccessGuide;
using Relaunch = FullDiskAccessRelaunch;

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
