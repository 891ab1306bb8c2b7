#include <gtest/gtest.h>

#include <utility>

#include "platform/linux/ApplicationScope.h"

namespace vostrel::linux_platform {
namespace {

TEST(ApplicationScopeTest, readsTheApplicationFromTheUnitOfItsProcess) {
    const std::string user = "0::/user.slice/user-1000.slice/user@1000.service/app.slice/";
    const std::pair<std::string, std::optional<std::string>> cases[] = {
        {user + "app-gnome-org.mozilla.firefox-4711.scope\n", "org.mozilla.firefox"},
        {user + "app-org.kde.konsole-1a2b.scope", "org.kde.konsole"},
        {user + "app-flatpak-com.visualstudio.code-99.scope/sub", "com.visualstudio.code"},
        {user + "app-gnome-google\\x2dchrome-12.scope\n", "google-chrome"},
        {user + "app-org.gnome.Terminal@0815.service\n", "org.gnome.Terminal"},
        {user + "app-dbus-org.gnome.Maps.service\n", "org.gnome.Maps"},
        {"12:cpu:/\n1:name=systemd:/user.slice/app-snap-thunderbird-1.scope\n", "thunderbird"},
        {user + "vte-spawn-1.scope\n", std::nullopt},
        {"0::/init.scope\n", std::nullopt},
        {"0::/app-.scope", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [groups, application] : cases)
        EXPECT_EQ(applicationOfGroups(groups), application) << groups;
}

}  // namespace
}  // namespace vostrel::linux_platform
