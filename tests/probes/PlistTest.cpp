#include <gtest/gtest.h>

#include <string>

#include "platform/PropertyList.h"
#include "probes/SimulatorImagesPlist.h"
#include "probes/SoftwareUpdatePlist.h"

namespace vostrel {
namespace {

std::string plist(const std::string& content) {
    return R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0">)" + content + "</plist>";
}

const std::string updates = plist(R"(<dict>
    <key>LastSuccessfulDate</key><date>2025-03-03T09:05:07Z</date>
    <key>LastUpdatesAvailable</key><integer>3</integer>
    <key>AutomaticDownload</key><true/>
    <key>RecommendedUpdates</key><array>
        <dict><key>Identifier</key><string>A</string><key>Display Name</key><string>macOS 15.4 – größer</string>
            <key>Display Version</key><string>15.4</string><key>Product Key</key><string>MSU_1</string></dict>
        <dict><key>Identifier</key><string>B</string><key>Display Version</key><integer>3</integer></dict>
        <dict><key>Display Name</key><string></string><key>Product Key</key><string>062-1</string></dict>
        <dict><key>Display Version</key><string>1</string></dict>
        <string>stray</string>
    </array></dict>)");

TEST(SoftwareUpdatePlist, readsTheUpdatesThatWait) {
    const UpdatePlistInfo expected{
        .updates = {{"macOS 15.4 – größer", "15.4", "MSU_1"}, {"B", {}, {}}, {"062-1", {}, "062-1"}},
        .lastCheck = Date::fromSeconds(1'740'992'707)};
    EXPECT_EQ(SoftwareUpdatePlist::parse(updates), expected);
    // The binary form of an empty dictionary, and of one with a date.
    const std::string end("\0\0\0\0\0\0\1\1\0\0\0\0\0\0\0\1\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x09", 32);
    EXPECT_EQ(SoftwareUpdatePlist::parse("bplist00\xd0\x08" + end), UpdatePlistInfo());
    for (const auto& damaged :
         {std::string(), std::string("no list"), plist("<array/>"), plist("<string>a</string>"),
          plist("<dict><key>RecommendedUpdates</key><true/></dict>"), std::string("bplist00\xd0")})
        EXPECT_EQ(SoftwareUpdatePlist::parse(damaged), std::nullopt) << damaged;
}

const std::string images = plist(R"(<dict><key>version</key><integer>2</integer><key>images</key><array>
    <dict><key>uuid</key><string>0f1e2d3c-4B5A-6978-8796-A5B4C3D2E1F0</string>
        <key>path</key><dict><key>relative</key><string>file:///Library/Images/a%20b%C3%A9.dmg</string></dict>
        <key>runtimeInfo</key><dict><key>build</key><string>22G86</string>
            <key>bundleIdentifier</key><string>com.apple.CoreSimulator.SimRuntime.iOS-18-1</string></dict>
        <key>lastUsedAt</key><date>2025-03-03T09:05:07Z</date></dict>
    <dict><key>uuid</key><string>0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F1</string><key>path</key><string>/a%20b</string></dict>
    <dict><key>uuid</key><string>all; rm -rf ~</string><key>path</key><string>/a</string></dict>
    <dict><key>uuid</key><string>0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F2</string></dict>
    <dict><key>uuid</key><string>0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F3</string><key>path</key><string>a</string></dict>
    <dict><key>uuid</key><string>0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F4</string>
        <key>path</key><string>file:///a%2</string></dict>
    <dict><key>uuid</key><string>0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F5</string>
        <key>path</key><string>file:///a%00</string></dict>
    <integer>1</integer>
    </array></dict>)");

TEST(SimulatorImagesPlist, readsTheImages) {
    const std::vector<SimulatorImage> expected{
        {.identifier = "0f1e2d3c-4B5A-6978-8796-A5B4C3D2E1F0",
         .runtime = "com.apple.CoreSimulator.SimRuntime.iOS-18-1",
         .build = "22G86",
         .path = "/Library/Images/a bé.dmg",
         .bytes = {},
         .lastUsed = Date::fromSeconds(1'740'992'707)},
        {.identifier = "0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F1",
         .runtime = {},
         .build = {},
         .path = "/a%20b",
         .bytes = {},
         .lastUsed = {}},
    };
    EXPECT_EQ(SimulatorImagesPlist::parse(images), expected);
    for (const auto& damaged : {plist("<dict/>"), plist("<dict><key>images</key><dict/></dict>"), plist("<array/>")})
        EXPECT_EQ(SimulatorImagesPlist::parse(damaged), std::nullopt) << damaged;

    const std::pair<const char*, const char*> names[] = {
        {"com.apple.CoreSimulator.SimRuntime.iOS-18-1", "iOS 18.1"},
        {"com.apple.CoreSimulator.SimRuntime.watchOS-11-0-1", "watchOS 11.0.1"},
        {"com.apple.CoreSimulator.SimRuntime.tvOS", "tvOS"},
        {"org.example.iOS-18-1", "org.example.iOS-18-1"},
    };
    for (const auto& [runtime, name] : names)
        EXPECT_EQ(SimulatorImagesPlist::runtimeName(runtime), name);
}

TEST(PropertyList, survivesAnyDamage) {
    for (const std::string& whole : {updates, images}) {
        for (std::size_t cut = 0; cut < whole.size(); ++cut) {
            EXPECT_NO_THROW((void)PropertyList::parse(whole.substr(0, cut)));
            std::string changed = whole;
            changed[cut] = static_cast<char>(changed[cut] ^ 0x11);
            EXPECT_NO_THROW((void)SoftwareUpdatePlist::parse(changed));
            EXPECT_NO_THROW((void)SimulatorImagesPlist::parse(changed));
        }
    }
    std::string deep;
    for (int level = 0; level < 200; ++level)
        deep = "<array>" + deep + "</array>";
    EXPECT_EQ(PropertyList::parse(plist(deep)), std::nullopt);
    EXPECT_EQ(PropertyList::parse(plist("<string>\xff</string>")), std::nullopt);
}

}  // namespace
}  // namespace vostrel
