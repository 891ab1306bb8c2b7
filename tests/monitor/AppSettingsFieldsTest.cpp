#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "monitor/AppSettingsFields.h"
#include "stores/JSONCoding.h"

namespace vostrel {
namespace {

TEST(AppSettingsFieldsTest, readsKeyByKeyAndTakesAnUnreadablePauseForOne) {
    const auto unreadablePause = [](AppSettings& s) { s.automaticCleaningPaused = s.pauseSettingUnreadable = true; };
    const std::pair<const char*, std::function<void(AppSettings&)>> table[] = {
        {R"({"readoutStyle":"clock","suggestionCadence":7,"notificationsEnabled":"no","hysteresisGigabytes":1e400})",
         [](AppSettings&) {}},
        {R"({"line":{"unit":"percent","value":80}})", [](AppSettings& s) { s.line = SpaceLine::percent(50); }},
        {R"({"line":{"unit":"blocks","value":2},"alertLevels":"20%"})", [](AppSettings&) {}},
        {R"({"alertLevels":[{"unit":"percent","value":7},null,5,{"value":3},{"unit":"gigabytes","value":1E1}]})",
         [](AppSettings& s) { s.alertLevels = {SpaceLine::percent(7), SpaceLine::gigabytes(10)}; }},
        {R"({"automaticCleaningPaused":true,"pauseSettingUnreadable":true})",
         [](AppSettings& s) { s.automaticCleaningPaused = true; }},
        {R"({"automaticCleaningPaused":null})", unreadablePause},
        {R"({"automaticCleaningPaused":0})", unreadablePause},
        {R"({"automaticCleaningPaused":"false"})", unreadablePause},
    };
    for (const auto& [text, change] : table) {
        AppSettings expected;
        change(expected);
        EXPECT_EQ(JSONCoding::decoder().decode<AppSettings>(text), expected) << text;
    }
    EXPECT_FALSE(JSONCoding::decoder().decode<AppSettings>(
        R"({"automaticCleaningPaused":false,"automaticCleaningPaused":true})"));
}

}  // namespace
}  // namespace vostrel
