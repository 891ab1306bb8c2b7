#include "filesystem/PackageNames.h"

#include <algorithm>
#include <array>

#include "base/UnicodeText.h"

namespace vostrel {

namespace {

constexpr auto extensions = std::to_array<std::string_view>({
    "action",    "app",        "appdir",      "appex",      "bundle",      "component", "docset", "download", "dsym",
    "framework", "kext",       "key",         "mdimporter", "mpkg",        "numbers",   "pages",  "pkg",      "plugin",
    "prefpane",  "playground", "qlgenerator", "rtfd",       "saver",       "scptd",     "vst",    "vst3",     "wdgt",
    "workflow",  "xcarchive",  "xcframework", "xcodeproj",  "xcworkspace", "xpc",
});

}  // namespace

bool isPackageName(std::string_view folderName) {
    const auto dot = folderName.rfind('.');
    if (dot == std::string_view::npos || dot == 0) return false;
    return std::ranges::find(extensions, folded(folderName.substr(dot + 1))) != extensions.end();
}

}  // namespace vostrel
