#pragma once

namespace vostrel::sentences {

/// What reports of runs say, and why a rule was not run.

inline constexpr const char* folderReplaced = "The folder was replaced. Preview it again.";
inline constexpr const char* foldersChanged =
    "The folders this rule cleans changed since you approved it. Preview it again.";
inline constexpr const char* severalDisks =
    "This rule's folders are on more than one disk, so Vostrel did not measure the space it freed.";
inline constexpr const char* logNotWritten = "The log could not be written.";
inline constexpr const char* freeSpaceUnknown = "Vostrel could not measure free space, so the freed amount is unknown.";
inline constexpr const char* logUnavailable = "Vostrel could not record this run, so it did not remove anything.";
inline constexpr const char* previewOutdated = "The rule changed after the preview. Preview it again.";
inline constexpr const char* previewOfAnotherRule = "This preview belongs to another rule.";
inline constexpr const char* limitedDatesNeedPreview =
    "This disk does not record when files arrive. Preview the rule and run it from the preview.";
inline constexpr const char* previewExpired = "This preview is more than 15 minutes old. Preview the rule again.";
inline constexpr const char* previewAhead = "This preview is dated ahead of the Mac's clock. Preview the rule again.";
inline constexpr const char* stoppedWhilePlanning = "Stopped while Vostrel was looking for items to clean.";
inline constexpr const char* interrupted =
    "Did not finish. Vostrel stopped during this run. Check the folder and the Trash.";

}  // namespace vostrel::sentences
