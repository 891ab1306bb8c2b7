#include "cli/RuleText.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <array>
#include <utility>

#include "base/Visit.h"
#include "cli/Output.h"

namespace vostrel::cli {

namespace {

constexpr std::array weekdays = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};

std::string weekdayName(int weekday) {
    if (weekday < 1 || weekday > 7) return fmt::format("day {}", weekday);
    return weekdays.at(static_cast<std::size_t>(weekday - 1));
}

std::string joined(const std::vector<std::string>& parts) {
    return fmt::format("{}", fmt::join(parts, ", "));
}

std::string scopeText(RuleScope scope) {
    switch (scope) {
        case RuleScope::topLevelItems:
            return "each file and each folder directly in it";
        case RuleScope::allFiles:
            return "every file in it, at any depth";
        case RuleScope::topLevelFiles:
            return "files directly in it";
    }
    return {};
}

/// Of what the scope lets in, a preset may take less.
std::string scopeText(RuleScope scope, const Preset* preset) {
    if (preset != nullptr && preset->cleansScreenshots()) return scopeText(RuleScope::topLevelFiles);
    if (preset != nullptr && preset->foldersOnly) return "each folder directly in it";
    return scopeText(scope);
}

std::string namesText(const Preset& preset) {
    if (!preset.namedLike.empty()) return "only files named like " + preset.namedLike;
    return preset.foldersOnly ? "only folders with names that its tool gives" : "only names that its tool gives";
}

std::string ageText(int days, AgeBasis basis) {
    const std::string age = counted(days, "day", "days");
    switch (basis) {
        case AgeBasis::modified:
            return "not modified for " + age;
        case AgeBasis::added:
            return "added " + age + " ago or earlier";
        case AgeBasis::lastOpened:
            return "not opened for " + age;
    }
    return {};
}

/// A limit is said exactly, or in bytes: "1.5 MB", "1,499,999 bytes".
std::string exactSize(std::int64_t size) {
    for (const auto& [unit, name] : {std::pair(1'000'000'000, "GB"), std::pair(1'000'000, "MB")}) {
        const std::int64_t tenths = size / (unit / 10);
        if (size < unit || size % (unit / 10) != 0) continue;
        const auto whole = grouped(tenths / 10);
        return tenths % 10 == 0 ? fmt::format("{} {}", whole, name) : fmt::format("{}.{} {}", whole, tenths % 10, name);
    }
    return counted(size, "byte", "bytes");
}

std::string namesOfKinds(const std::set<ArtifactKind>& kinds) {
    if (kinds.empty()) return "no kind of build folder";
    std::vector<std::string> names;
    for (const ArtifactKind kind : kinds)
        names.emplace_back(namesOf(kind).folderName);
    return joined(names);
}

std::string triggerText(const RuleTrigger& trigger) {
    return visit(
        trigger,
        [](const DailyTrigger& daily) { return fmt::format("every day at {:02}:{:02}", daily.hour, daily.minute); },
        [](const WeeklyTrigger& weekly) {
            return fmt::format("every {} at {:02}:{:02}", weekdayName(weekly.weekday), weekly.hour, weekly.minute);
        },
        [](const WhenAppQuitsTrigger& quits) { return "when " + quits.bundleID + " quits"; },
        [](const EndOfDayTrigger&) { return std::string("at the end of the day"); },
        [](const BelowLineTrigger&) { return std::string("when free space falls below your line"); },
        [](const ManualTrigger&) { return std::string("by hand"); });
}

}  // namespace

std::string targetText(const RuleTarget& target) {
    return visit(
        target, [](const FolderTarget& folder) { return folder.path.native(); },
        [](const PresetTarget& preset) { return "preset " + preset.id; },
        [](const ProjectScanTarget& scan) {
            std::vector<std::string> roots;
            for (const auto& root : scan.roots)
                roots.push_back(root.native());
            return fmt::format("{} of projects in {} untouched for {}", namesOfKinds(scan.kinds), joined(roots),
                               counted(scan.untouchedDays, "day", "days"));
        });
}

std::vector<std::string> filterTexts(const Rule& rule, const Preset* preset) {
    const RuleFilter& filter = rule.filter;
    std::vector<std::string> texts;
    if (!std::holds_alternative<ProjectScanTarget>(rule.target)) texts.push_back(scopeText(filter.scope, preset));
    if (filter.minAgeDays) texts.push_back(ageText(*filter.minAgeDays, filter.ageBasis));
    if (filter.minSizeBytes) texts.push_back(exactSize(*filter.minSizeBytes) + " or larger");
    if (!filter.includeGlobs.empty()) texts.push_back("named " + joined(filter.includeGlobs));
    if (!filter.excludeGlobs.empty())
        texts.push_back("not named " + joined(filter.excludeGlobs) + ", nor folders holding such a name");
    if (!filter.pinnedFiles.empty()) {
        std::vector<std::string> names;
        for (const PinnedFile& pin : filter.pinnedFiles)
            names.push_back(pin.name);
        texts.push_back("chosen: " + joined(names));
    }
    return texts;
}

std::vector<std::string> limitTexts(const Preset& preset) {
    std::vector<std::string> texts;
    if (preset.decidesNames()) texts.push_back(namesText(preset));
    if (!preset.namesInside.empty()) texts.emplace_back("none that holds more than its tool puts there");
    for (const std::string& name : preset.historyInside)
        texts.push_back("none that holds \"" + name + "\", earlier versions of your own files");
    if (preset.minAgeDays) texts.push_back(ageText(*preset.minAgeDays, preset.ageBasis));
    for (const std::string& folder : preset.usedBeside)
        texts.push_back("nothing written since to its entry in ~/" + folder);
    if (preset.trashOnly) texts.emplace_back("only to the Trash");
    return texts;
}

std::string actionText(CleanupAction action) {
    return action == CleanupAction::trash ? "moves them to the Trash" : "deletes them for good";
}

std::string triggersText(const std::vector<RuleTrigger>& triggers) {
    if (triggers.empty()) return "only by hand";
    std::vector<std::string> texts;
    for (const RuleTrigger& trigger : triggers)
        texts.push_back(triggerText(trigger));
    return joined(texts);
}

ApprovalState approvalState(const Rule& rule, const CleanupPlanner& planner) {
    if (!rule.approval) return ApprovalState::none;
    if (!rule.approvalHolds(planner.catalog)) return ApprovalState::ruleChanged;
    return planner.approvalIsStale(rule) ? ApprovalState::foldersChanged : ApprovalState::current;
}

std::string approvalText(ApprovalState state) {
    switch (state) {
        case ApprovalState::none:
            return "not approved";
        case ApprovalState::current:
            return "approved";
        case ApprovalState::ruleChanged:
            return "changed since it was approved";
        case ApprovalState::foldersChanged:
            return "its folders changed since it was approved";
    }
    return {};
}

}  // namespace vostrel::cli
