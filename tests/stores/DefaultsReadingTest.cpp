#include <gtest/gtest.h>

#include "stores/DefaultsReading.h"

namespace vostrel {
namespace {

TEST(DefaultsReadingTest, answersFromItsListByDomainAndKey) {
    const FixedDefaults defaults({{"com.apple.screencapture location", "/Users/ann/Shots"},
                                  {FixedDefaults::key("com.apple.dt.Xcode", "paths"), PreferenceOther{}}});
    EXPECT_EQ(defaults.value("location", "com.apple.screencapture"), DefaultsValue("/Users/ann/Shots"));
    EXPECT_EQ(defaults.value("paths", "com.apple.dt.Xcode"), DefaultsValue(PreferenceOther{}));
    EXPECT_EQ(defaults.value("location", "com.apple.dt.Xcode"), DefaultsValue(PreferenceMissing{}));
}

}  // namespace
}  // namespace vostrel
