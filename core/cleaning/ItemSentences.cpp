#include "cleaning/ItemSentences.h"

namespace vostrel::sentences::item {

std::string days(int count) {
    return std::to_string(count) + (count == 1 ? " day" : " days");
}

std::string notOldEnough(int minAgeDays) {
    return "It is no longer older than " + days(minAgeDays) + ", so Vostrel left it alone.";
}

std::string projectInUse(int untouchedDays) {
    return "Its project changed in the last " + days(untouchedDays) + ", so Vostrel left it alone.";
}

std::string buildFolderInUse(int untouchedDays) {
    return "Something in it changed in the last " + days(untouchedDays) + ", so Vostrel left it alone.";
}

std::string notMadeBy(const std::string& tool) {
    return "It does not look like a folder " + tool + " made, so Vostrel left it alone.";
}

std::string trashNotConfirmed(const std::string& why) {
    return "Vostrel could not confirm it reached the Trash: " + why + ". Look for it in the Trash.";
}

}  // namespace vostrel::sentences::item
