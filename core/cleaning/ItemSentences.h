#pragma once

#include <string>
#include <string_view>

namespace vostrel::sentences::item {

/// Why an item was left alone or could not be removed.

// The whole plan, or all of a folder.
inline constexpr std::string_view rootsOverlap =
    "This rule's folders are inside one another, so Vostrel left everything alone.";
inline constexpr std::string_view rootReplaced =
    "A folder this rule cleans was replaced after the preview, so Vostrel left it alone.";
inline constexpr std::string_view onlyToTrash = "This rule may only move items to the Trash, so Vostrel left it alone.";

// What the rule does not clean.
inline constexpr std::string_view outsideItsFolder =
    "It is not inside a folder that this rule cleans, so Vostrel left it alone.";
inline constexpr std::string_view onAnotherDisk =
    "It is on another disk than the folder this rule cleans, so Vostrel left it alone.";
inline constexpr std::string_view notOfTheRulesNames =
    "Its name is not one this rule cleans, so Vostrel left it alone.";
inline constexpr std::string_view notWhereTheRuleCleans =
    "It is not where this rule looks for items, so Vostrel left it alone.";
inline constexpr std::string_view notAScreenshot = "It is not a screenshot file, so Vostrel left it alone.";
inline constexpr std::string_view notOfThePresetsNames =
    "Its name is not one this preset cleans, so Vostrel left it alone.";
inline constexpr std::string_view notAChosenFile =
    "It is not one of the files this rule was made for, so Vostrel left it alone.";

// What is different from what the preview saw.
inline constexpr std::string_view onlyInICloud = "Its content is now only in iCloud, so Vostrel left it alone.";
inline constexpr std::string_view couldNotCheck = "Vostrel could not check it again, so it left it alone.";
inline constexpr std::string_view gone = "It was gone before Vostrel reached it.";
inline constexpr std::string_view becameALink = "It became a link after the preview, so Vostrel left it alone.";
inline constexpr std::string_view itemReplaced = "It was replaced after the preview, so Vostrel left it alone.";
inline constexpr std::string_view folderReplaced =
    "The folder it was in changed after the preview, so Vostrel left it alone.";
inline constexpr std::string_view changed = "It changed after the preview, so Vostrel left it alone.";
inline constexpr std::string_view justChanged = "It changed in the last 10 minutes, so Vostrel left it alone.";
inline constexpr std::string_view notReadInTime = "Part of it could not be read in time, so Vostrel left it alone.";
inline constexpr std::string_view holdsWhatStays = "It now holds something Vostrel never removes, so it left it alone.";

// Build folders.
inline constexpr std::string_view projectNotChecked = "Vostrel could not check its project again, so it left it alone.";
inline constexpr std::string_view projectChanged = "Its project changed after the preview, so Vostrel left it alone.";
inline constexpr std::string_view markerGone =
    "The file that marks it as build output is no longer beside it, so Vostrel left it alone.";
inline constexpr std::string_view notThePlannedBuildFolder =
    "It is not the build output folder Vostrel planned, so Vostrel left it alone.";

/// "1 day", "7 days".
[[nodiscard]] std::string days(int count);
[[nodiscard]] std::string notOldEnough(int minAgeDays);
[[nodiscard]] std::string projectInUse(int untouchedDays);
[[nodiscard]] std::string buildFolderInUse(int untouchedDays);
[[nodiscard]] std::string notMadeBy(const std::string& tool);
/// "macOS did not say where it went", "nothing is at /a/b", "/a/b is a different item".
[[nodiscard]] std::string trashNotConfirmed(const std::string& why);

}  // namespace vostrel::sentences::item
