#pragma once

#include "rules/CleanupPlan.h"
#include "rules/PresetCatalog.h"
#include "rules/Rule.h"

namespace vostrel {

inline const Date sampleNow = Date::fromSeconds(1'760'000'000);

/// A rule that every check lets pass: old items of a folder, every morning.
inline Rule sampleRule(std::filesystem::path folder = "/home/ada/Cache") {
    Rule rule;
    rule.id = Uuid::parse("11111111-2222-4333-8444-555555555555").value_or(Uuid());
    rule.name = "Old cache";
    rule.target = FolderTarget{std::move(folder)};
    rule.filter.minAgeDays = 30;
    rule.triggers = {DailyTrigger{9, 5}};
    rule.pauseWhileRunning = {"org.example.Editor"};
    rule.createdAt = sampleNow;
    return rule;
}

/// A preview of that rule, just made, which opened one root and found nothing to remove.
inline CleanupPlan samplePlan(const Rule& rule) {
    CleanupPlan plan;
    plan.ruleID = rule.id;
    plan.roots.emplace_back().identity = {"VOLUME", 42};
    plan.terms = {rule.target, rule.filter, rule.action};
    plan.createdAt = sampleNow;
    return plan;
}

/// One preset of each sort, on folders below Library/Caches.
inline PresetCatalog sampleCatalog() {
    Preset items;
    items.id = "each-item";
    items.sources = {HomeSource{"Library/Caches/each-item"}};
    Preset depth = items;
    depth.id = "any-depth";
    depth.scope = RuleScope::allFiles;
    Preset names = items;
    names.id = "own-names";
    names.namePatterns = {"*.log"};
    Preset screenshots = items;
    screenshots.id = "screenshots";
    screenshots.trashOnly = true;
    screenshots.sources = {ScreenshotFolderSource{}};
    Preset derivedData = items;
    derivedData.id = "derived-data";
    derivedData.sources = {XcodeDerivedDataSource{}};
    Preset temporary = items;
    temporary.id = "temporary";
    temporary.sources = {HomeSource{"Library/Caches/kept"}, UserTempSource{"session-"}};
    return PresetCatalog({items, depth, names, screenshots, derivedData, temporary});
}

}  // namespace vostrel
