#pragma once

#include <functional>
#include <optional>

#include "base/Date.h"
#include "cleaning/PresetItems.h"
#include "cleaning/RootOpening.h"
#include "filesystem/MeasuredItem.h"
#include "rules/CleanupPlan.h"
#include "rules/Rule.h"

namespace vostrel {

/// Decides of each measured item of one root whether it is planned, left out with a reason, or no item of the rule at
/// all (too young, too small).
class ItemSelection {
public:
    /// An item in which anything changed within this time is in use.
    static constexpr std::chrono::seconds recentUse{600};

    /// Adds to `into`; `date` is the plan's, `ofPreset` what the rule's preset wants, if it has one. All references
    /// outlive the object.
    ItemSelection(const Rule& forRule, const OpenedRoot& ofRoot, std::size_t index, Date date, CleanupPlan& into,
                  const PresetItems* ofPreset = nullptr)
        : rule(forRule), root(ofRoot), rootIndex(index), now(date), plan(into), preset(ofPreset) {}

    void take(MeasuredItem item);
    /// The same for a build folder of an untouched project, the rule being a project scan.
    void takeBuildFolder(std::filesystem::path url, const ProjectStamp& project, MeasuredItem item);

private:
    void plans(std::filesystem::path&& url, const MeasuredItem& item, Date ageDate,
               std::optional<ProjectStamp> project = {});
    [[nodiscard]] std::filesystem::path urlOf(const MeasuredItem& item) const;
    [[nodiscard]] bool isOldEnough(const MeasuredItem& item, const std::filesystem::path& url, Date ageDate) const;

    const Rule& rule;
    const OpenedRoot& root;
    std::size_t rootIndex;
    Date now;
    CleanupPlan& plan;
    /// What the rule's preset wants, when it is of one.
    const PresetItems* preset;
};

}  // namespace vostrel
