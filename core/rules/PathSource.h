#pragma once

#include <string>
#include <variant>

namespace vostrel {

/// A folder at a path relative to the home folder.
struct HomeSource {
    std::string path;
    friend bool operator==(const HomeSource&, const HomeSource&) = default;
};

/// The folder in the user's temporary folder whose name is the prefix and the user's number.
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

/// What lies in the home Trash of a Linux desktop, which keeps the date that each item came in beside it.
struct HomeTrashSource {
    friend bool operator==(const HomeTrashSource&, const HomeTrashSource&) = default;
};

/// Where a preset's folders are.
using PathSource =
    std::variant<HomeSource, UserTempSource, XcodeDerivedDataSource, ScreenshotFolderSource, HomeTrashSource>;

}  // namespace vostrel
