#pragma once

#include <string>
#include <variant>

namespace vostrel {

/// A folder at a path relative to the home folder.
struct HomeSource {
    std::string path;
    friend bool operator==(const HomeSource&, const HomeSource&) = default;
};

/// The folders in the user's temporary folder whose names begin with the prefix.
struct UserTempSource {
    std::string prefix;
    friend bool operator==(const UserTempSource&, const UserTempSource&) = default;
};

/// The DerivedData folder chosen in Xcode's settings.
struct XcodeDerivedDataSource {
    friend bool operator==(const XcodeDerivedDataSource&, const XcodeDerivedDataSource&) = default;
};

/// The folder in which the system saves screenshots.
struct ScreenshotFolderSource {
    friend bool operator==(const ScreenshotFolderSource&, const ScreenshotFolderSource&) = default;
};

/// Where a preset's folders are.
using PathSource = std::variant<HomeSource, UserTempSource, XcodeDerivedDataSource, ScreenshotFolderSource>;

}  // namespace vostrel
