#include "cleaning/ItemSelection.h"

#include <algorithm>
#include <utility>

#include "base/LongList.h"
#include "filesystem/FileFacts.h"
#include "platform/TrashInfo.h"

namespace vostrel {

namespace {

using Trouble = MeasuredItem::Trouble;

constexpr const char* undatedInTrash = "Nothing tells when it was thrown away, so Vostrel leaves it alone.";

/// The first reason to leave the item out that its measuring gives, in the order in which a user should hear them.
std::optional<SkipReason> reasonToSkip(const MeasuredItem& item) {
    const TreeFacts& facts = item.facts;
    if (item.trouble == Trouble::isLink) return SkipReason::symlink;
    if (item.trouble == Trouble::onOtherVolume || facts.crossesVolume) return SkipReason::otherVolume;
    if (item.trouble == Trouble::isProtected) return SkipReason::protectedPlace;
    if (item.trouble == Trouble::isUnrecognised) return SkipReason::noToolSignature;
    if (item.trouble == Trouble::isExcluded || facts.containsExcluded) return SkipReason::containsExcluded;
    if (facts.protectedRefusal) return SkipReason::protectedPlace;
    if (item.trouble == Trouble::couldNotRead || facts.unreadableCount > 0) return SkipReason::unreadable;
    if (item.trouble == Trouble::notMeasuredInTime) return SkipReason::timedOut;
    if (item.trouble == Trouble::changedMeanwhile) return SkipReason::changedWhileChecking;
    if (facts.containsDataless) return SkipReason::notDownloaded;
    return std::nullopt;
}

}  // namespace

void ItemSelection::take(MeasuredItem item) {
    auto url = urlOf(item);
    auto reason = reasonToSkip(item);
    if (root.root.datedByTrashInfo && !reason) {
        if (const auto deleted = deletionDate(url)) {
            item.added = std::max(*deleted, item.added.value_or(item.facts.newestUse));
        } else {
            reason = SkipReason::protectedPlace;
            item.facts.protectedRefusal = undatedInTrash;
        }
    }
    if (preset != nullptr && !reason) {
        item.facts.protectedRefusal = preset->refusal(url);
        if (item.facts.protectedRefusal) reason = SkipReason::protectedPlace;
    }
    if (reason) {
        auto refusal = reason == SkipReason::protectedPlace ? std::move(item.facts.protectedRefusal) : std::nullopt;
        plan.skipped.push_back({std::move(url), *reason, std::move(refusal)});
        return;
    }
    const Date ageDate = ageDateOf(item, url, rule.filter.ageBasis);
    if (!isOldEnough(item, url, ageDate) || item.facts.ownBytes() < rule.filter.minSizeBytes.value_or(0)) return;
    if (now - item.facts.newestUse < recentUse) {
        plan.skipped.push_back({std::move(url), SkipReason::tooRecent, std::nullopt});
        return;
    }
    plans(std::move(url), item, ageDate);
}

void ItemSelection::takeBuildFolder(std::filesystem::path url, const ProjectStamp& project, MeasuredItem item) {
    if (auto reason = reasonToSkip(item)) {
        // It holds what no tool leaves there: a person made the folder, or uses it.
        if (reason == SkipReason::containsExcluded) reason = SkipReason::noToolSignature;
        auto refusal = reason == SkipReason::protectedPlace ? std::move(item.facts.protectedRefusal) : std::nullopt;
        plan.skipped.push_back({std::move(url), *reason, std::move(refusal)});
        return;
    }
    const auto* scan = std::get_if<ProjectScanTarget>(&rule.target);
    const bool isInUse = scan == nullptr || item.facts.newestUse > now - std::chrono::days(scan->untouchedDays);
    if (!isInUse) plans(std::move(url), item, project.newestSource, project);
}

void ItemSelection::plans(std::filesystem::path&& url, const MeasuredItem& item, Date ageDate,
                          std::optional<ProjectStamp> project) {
    PlannedItem planned;
    planned.url = std::move(url);
    planned.bytes = item.facts.bytes;
    planned.ageDate = ageDate;
    planned.fileID = item.identity.inode;
    planned.device = item.identity.device;
    planned.parent = item.parent;
    planned.inUseDate = item.facts.newestUse;
    planned.isDirectory = item.type == EntryType::folder;
    planned.fileCount = item.facts.fileCount;
    planned.rootIndex = rootIndex;
    const bool goesByModified = project || rule.filter.ageBasis == AgeBasis::modified;
    planned.project = std::move(project);
    appendToLongList(plan.items, std::move(planned));
    plan.limitedDates = plan.limitedDates || (goesByModified && !root.recordsAddedDates);
}

std::filesystem::path ItemSelection::urlOf(const MeasuredItem& item) const {
    if (item.relativePath.empty()) return root.root.url;
    std::string path = root.root.url.native();
    path += '/';
    path += item.relativePath;
    return path;
}

bool ItemSelection::isOldEnough(const MeasuredItem& item, const std::filesystem::path& url, Date ageDate) const {
    return vostrel::isOldEnough(ageDate, rule.filter.minAgeDays, now) &&
           (preset == nullptr || preset->letsGo(item, url, now));
}

}  // namespace vostrel
