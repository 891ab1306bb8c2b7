#include "access/SnapshotPlaces.h"

#include <array>

namespace vostrel::snapshot_places {

namespace {

constexpr auto privacyPlaces = std::to_array<std::string_view>({
    "Desktop",
    "Documents",
    "Downloads",
    ".Trash",
    "Dropbox",
    "Google Drive",
    "OneDrive",
    "Library/Mobile Documents",
    "Library/CloudStorage",
    "Library/Application Support/CloudDocs",
    "Library/Application Support/FileProvider",
    "Library/Containers",
    "Library/Group Containers",
    "Library/Daemon Containers",
    "Pictures/Photos Library.photoslibrary",
    "Pictures/Photo Booth Library",
    "Library/Photos",
    "Library/MediaAnalysis",
    "Library/Mail",
    "Library/Messages",
    "Library/Safari",
    "Library/Calendars",
    "Library/Reminders",
    "Library/Contacts",
    "Library/HomeKit",
    "Library/Cookies",
    "Library/Suggestions",
    "Library/Biome",
    "Library/IdentityServices",
    "Library/Sharing",
    "Library/Accounts",
    "Library/PersonalizationPortrait",
    "Library/Metadata/CoreSpotlight",
    "Library/Autosave Information",
    "Library/Shortcuts",
    "Library/Weather",
    "Library/Trial",
    "Library/DuetExpertCenter",
    "Library/StatusKit",
    "Library/Assistant",
    "Library/CallServices",
    "Library/Passes",
    "Library/Finance",
    "Library/FinanceBackup",
    "Library/IntelligencePlatform",
    "Library/DoNotDisturb",
    "Library/Intents",
    "Library/PrivateCloudCompute",
    "Library/News",
    "Library/Application Support/com.apple.TCC",
    "Library/Application Support/AddressBook",
    "Library/Application Support/MobileSync",
    "Library/Application Support/CallHistoryDB",
    "Library/Application Support/CallHistoryTransactions",
    "Library/Application Support/Knowledge",
    "Library/Application Support/FaceTime",
    "Library/Application Support/com.apple.sharedfilelist",
    "Library/Application Support/com.apple.avfoundation",
});

constexpr auto mediaLibraryPlaces = std::to_array<std::string_view>({
    "Music/Music",
    "Music/iTunes",
    "Movies/TV",
    "Library/iTunes",
    "Library/AppleMediaServices",
    "Library/com.apple.AppleMediaServices",
    "Library/com.apple.iTunesCloud",
    "Library/Application Support/Music",
    "Library/Application Support/com.apple.iTunesCloud",
    "Library/Application Support/com.apple.MediaPlayer",
    "Library/Application Support/iLifeMediaBrowser",
});

constexpr auto systemPlaces = std::to_array<std::string_view>({"/System/Volumes/Update"});

constexpr auto folderOfVolumes = std::to_array<std::string_view>({"volumes", "media", "mnt"});

// Those of media libraries stand first.
constexpr auto libraryExtensions = std::to_array<std::string_view>(
    {"musiclibrary", "tvlibrary", "photoslibrary", "photolibrary", "aplibrary", "migratedphotolibrary"});

}  // namespace

std::span<const std::string_view> privacy() {
    return privacyPlaces;
}

std::span<const std::string_view> mediaLibraries() {
    return mediaLibraryPlaces;
}

std::span<const std::string_view> measuredSystem() {
    return systemPlaces;
}

std::span<const std::string_view> volumeHolders() {
    return folderOfVolumes;
}

std::span<const std::string_view> mediaLibraryExtensions() {
    return std::span(libraryExtensions).first(2);
}

std::span<const std::string_view> privacyExtensions() {
    return libraryExtensions;
}

}  // namespace vostrel::snapshot_places
