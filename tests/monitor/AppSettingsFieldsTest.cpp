#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "monitor/AppSettingsFields.h"
#include "stores/JSONCoding.h"

namespace vostrel {
namespace {

AppSettings read(const std::string& text) {
    return JSONCoding::decoder().decode<AppSettings>(text).value();
}

AppSettings defaultsBut(const std::function<void(AppSettings&)>& change) {
    AppSettings settings;
    change(settings);
    return settings;
}

TEST(AppSettingsFieldsTest, readsKeyByKey) {
    const auto line = [](SpaceLine set) { return defaultsBut([=](AppSettings& s) { s.line = set; }); };
    const auto levels = [](std::vector<SpaceLine> set) {
        return defaultsBut([=](AppSettings& s) { s.alertLevels = set; });
    };
    const AppSettings paused = defaultsBut([](AppSettings& s) { s.automaticCleaningPaused = true; });
    const AppSettings unreadablePause = defaultsBut([](AppSettings& s) {
        s.automaticCleaningPaused = true;
        s.pauseSettingUnreadable = true;
    });
    const std::pair<const char*, AppSettings> table[] = {
        {R"({})", {}},
        {R"({"readoutStyle":"clock","suggestionCadence":7,"notificationsEnabled":"no","hysteresisGigabytes":1e400})",
         {}},
        {R"({"hysteresisGigabytes":-3.5})", defaultsBut([](AppSettings& s) { s.hysteresisGigabytes = -3.5; })},
        {R"({"line":{"unit":"percent","value":80}})", line(SpaceLine::percent(50))},
        {R"({"line":{"unit":"gigabytes","value":0.2}})", line(SpaceLine::gigabytes(1))},
        {R"({"line":{"unit":"blocks","value":2}})", {}},
        {R"({"line":{"unit":"percent"}})", {}},
        {R"({"line":20})", {}},
        {R"({"alertLevels":[]})", levels({})},
        {R"({"alertLevels":"20%"})", {}},
        {R"({"alertLevels":[{"unit":"percent","value":7},null,5,{"value":3},{"unit":"gigabytes","value":1E1}]})",
         levels({SpaceLine::percent(7), SpaceLine::gigabytes(10)})},
        {R"({"automaticCleaningPaused":true,"pauseSettingUnreadable":true})", paused},
        {R"({"automaticCleaningPaused":null})", unreadablePause},
        {R"({"automaticCleaningPaused":0})", unreadablePause},
        {R"({"automaticCleaningPaused":"false"})", unreadablePause},
    };
    for (const auto& [text, settings] : table)
        EXPECT_EQ(read(text), settings) << text;
    EXPECT_FALSE(JSONCoding::decoder().decode<AppSettings>("[]"));
    EXPECT_FALSE(JSONCoding::decoder().decode<AppSettings>(
        R"({"automaticCleaningPaused":false,"automaticCleaningPaused":true})"));
}

}  // namespace
}  // namespace vostrel
