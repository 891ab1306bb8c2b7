#include <gtest/gtest.h>

#include <regex>

#include "filesystem/ScreenshotName.h"

namespace vostrel {
namespace {

TEST(ScreenshotNameTest, matchesTheNamesThatMacOSGives) {
    const std::regex asTold(screenshotNames);
    const auto isTold = [&](const char* name) { return std::regex_match(name, asTold); };
    for (const auto* name : {"Screenshot 2024-01-31 at 9.05.07\u202FPM.png", "Screenshot 2024-01-31 at 09.05.07 AM.jpg",
                             "Screen Shot 2019-12-01 at 21.15.00.tiff", "Screenshot 2024-01-31 at 9.05.07 (12).heic",
                             "Screen Recording 2024-01-31 at 9.05.07\u202FPM (2).mov"})
        EXPECT_TRUE(isScreenshotName(name) && isTold(name)) << name;
    for (const auto* name :
         {"Screenshot 2024-01-31.png", "Screenshot 2024-01-31 at 9.05.07 PM.png ",
          "screenshot 2024-01-31 at 9.05.07.png", "Screenshot 2024-01-31 at 009.05.07.png",
          "Screenshot 2024-1-31 at 9.05.07.png", "Screenshot 2024-01-31 at 9.05.07PM.png",
          "Screenshot 2024-01-31 at 9.05.07\u00A0PM.png", "Screenshot 2024-01-31 at 9.05.07 PM ().png",
          "Screenshot 2024-01-31 at 9.05.07 PM.PNG", "My Screenshot 2024-01-31 at 9.05.07.png",
          "Screenshot 2024-01-31 at 9.05.07.png.zip", "Screenshot", ""})
        EXPECT_FALSE(isScreenshotName(name) || isTold(name)) << name;
}

}  // namespace
}  // namespace vostrel
