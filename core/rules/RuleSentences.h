#pragma once

#include <string>

namespace vostrel::sentences {

/// What is said in more than one place: while a rule is edited, when its file is read and when it is planned.

inline constexpr const char* negativeAge = "The age must be 0 days or more.";
inline constexpr const char* negativeSize = "The size must be 0 bytes or more.";
inline constexpr const char* presetNotAvailable = "This preset is not available in this version of Vostrel.";
inline constexpr const char* presetOnlyTrashes =
    "This preset only moves items to the Trash, so its rules cannot delete permanently.";
inline constexpr const char* derivedDataOnlyTrashes =
    "Xcode keeps DerivedData in a folder chosen in its settings, so this rule can only move items to the Trash, not "
    "delete them.";
inline constexpr const char* presetDecidesNames =
    "This preset decides which names it cleans, so the rule cannot list names to clean. It can list names to keep.";
inline constexpr const char* presetCleansEachItem =
    "This preset cleans each item in its folders, and its rules must too.";
inline constexpr const char* presetCleansAnyDepth = "This preset cleans files at any depth, and its rules must too.";
inline constexpr const char* projectScanHasNoFilters =
    "A project scan picks projects by how long they have been untouched, so it has no age, size or name filters.";
inline constexpr const char* noProjectsInLibrary =
    "Vostrel does not look for projects inside ~/Library, where apps keep their own files.";
inline constexpr const char* noKindOfBuildFolder = "Choose at least one kind of folder to remove.";
inline constexpr const char* untouchedDaysOutOfRange = "Untouched days must be between 1 and 3650.";

inline constexpr const char* noTimeOfDay = "A run time is not a time of day.";
inline constexpr const char* noDayOfTheWeek = "A weekly run has a day that does not exist.";

inline constexpr const char* folderMissing =
    "The folder does not exist, or the rule has no folder. Edit the rule and choose one.";
inline constexpr const char* folderUnreadable =
    "Vostrel could not read this folder or its disk, so it will not clean it. If macOS protects the folder, Vostrel "
    "needs Full Disk Access.";

inline std::string spacesAroundPauseEntry(const std::string& entry) {
    return "The app to pause for \"" + entry + "\" has spaces or line breaks around it.";
}

}  // namespace vostrel::sentences
