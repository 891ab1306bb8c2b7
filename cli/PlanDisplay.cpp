#include "cli/PlanDisplay.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <vector>

#include "base/LocalTime.h"
#include "base/SpaceFormat.h"
#include "cli/RuleText.h"
#include "rules/ArtifactFacts.h"
#include "rules/PlanFields.h"
#include "rules/RuleFields.h"
#include "rules/SkipReason.h"
#include "stores/JSONCoder.h"

namespace vostrel::cli {

namespace {

using Alignment = Output::Alignment;
using Style = Output::Style;

// More lines than this are not read; the JSON document has all of them.
constexpr std::size_t mostItemsShown = 20;
constexpr std::size_t mostSkippedShown = 5;

std::string agePhrase(AgeBasis basis) {
    switch (basis) {
        case AgeBasis::modified:
            return "modified";
        case AgeBasis::added:
            return "added";
        case AgeBasis::lastOpened:
            return "last opened";
    }
    return {};
}

std::vector<const PlannedItem*> largestFirst(const CleanupPlan& plan) {
    std::vector<const PlannedItem*> items;
    items.reserve(plan.items.size());
    for (const auto& item : plan.items)
        items.push_back(&item);
    const auto isLarger = [](const PlannedItem* left, const PlannedItem* right) {
        return left->bytes != right->bytes ? left->bytes > right->bytes : left->url < right->url;
    };
    const auto shown = std::min(items.size(), mostItemsShown);
    std::ranges::partial_sort(items, items.begin() + static_cast<std::ptrdiff_t>(shown), isLarger);
    return items;
}

/// "modified 2025-03-03"; of a build folder what it is, whose, and since when nobody has touched that project.
std::string dateText(const PathGuards& guards, const CleanupPlan& plan, const PlannedItem& item) {
    if (!item.project) return agePhrase(plan.terms.filter.ageBasis) + " " + localDay(item.ageDate);
    return fmt::format("{}, {} untouched since {}", factsOf(item.project->kind).title,
                       guards.displayPath(item.project->folder), localDay(item.project->newestSource));
}

JSONValue documentOf(const PlannedItem& item) {
    std::vector<JSONMember> fields{{"path", encodeJSON(item.url)},
                                   {"bytes", encodeJSON(item.bytes)},
                                   {"fileCount", encodeJSON(item.fileCount)},
                                   {"isDirectory", item.isDirectory},
                                   {"ageDate", encodeJSON(item.ageDate)}};
    if (item.project) {
        fields.push_back({"project", JSONObject{{"folder", encodeJSON(item.project->folder)},
                                                {"kind", encodeJSON(item.project->kind)},
                                                {"newestSource", encodeJSON(item.project->newestSource)}}});
    }
    return JSONObject(std::move(fields));
}

void showItems(Output& output, const PathGuards& guards, const CleanupPlan& plan) {
    std::vector<Output::Row> rows;
    const auto items = largestFirst(plan);
    for (std::size_t at = 0; at < std::min(items.size(), mostItemsShown); ++at) {
        const PlannedItem& item = *items[at];
        const std::string content = item.isDirectory ? counted(item.fileCount, "file", "files") : "";
        rows.push_back({SpaceFormat::bytes(item.bytes),
                        guards.displayPath(item.url),
                        {content, Style::dim},
                        {dateText(guards, plan, item), Style::dim}});
    }
    output.table(rows, {Alignment::right, Alignment::left, Alignment::right, Alignment::left});
    if (items.size() > mostItemsShown) {
        const auto more = static_cast<std::int64_t>(items.size() - mostItemsShown);
        output.line({{fmt::format("  … and {} more; --json lists them all.", grouped(more)), Style::dim}});
    }
}

void showSkipped(Output& output, const PathGuards& guards, const CleanupPlan& plan) {
    if (plan.skipped.empty()) return;
    output.line();
    output.line({{"Left alone:", Style::bold}});
    std::map<SkipReason, std::vector<const SkippedItem*>> byReason;
    for (const auto& item : plan.skipped)
        byReason[item.reason].push_back(&item);
    for (const auto& [reason, items] : byReason) {
        output.line({"  " + countedPhrase(reason, items.size())});
        const auto shown = std::min(items.size(), mostSkippedShown);
        for (std::size_t at = 0; at < shown; ++at) {
            const SkippedItem& item = *items[at];
            const std::string refusal = item.refusal ? "  " + *item.refusal : "";
            output.line({"    " + guards.displayPath(item.url), {refusal, Style::dim}});
        }
        if (items.size() > shown)
            output.line({{fmt::format("    … and {} more", grouped(static_cast<std::int64_t>(items.size() - shown))),
                          Style::dim}});
    }
}

}  // namespace

void showPlan(Output& output, const PathGuards& guards, const CleanupPlan& plan) {
    const bool deletes = plan.terms.action == CleanupAction::deletePermanently;
    if (plan.items.empty()) {
        output.line({{"Nothing would go now.", Style::bold}});
    } else {
        const auto count = static_cast<std::int64_t>(plan.items.size());
        output.line({{deletes ? "Would be deleted for good:" : "Would go to the Trash:", Style::bold}});
        showItems(output, guards, plan);
        output.line(
            {{fmt::format("  {} in all: {}", SpaceFormat::bytes(plan.totalBytes()), counted(count, "item", "items")),
              Style::good}});
    }
    showSkipped(output, guards, plan);
    if (plan.limitedDates) {
        output.line();
        output.line({"This disk does not record when files arrive, so a file copied here a minute ago can look old."});
    }
}

JSONValue documentOf(const CleanupPlan& plan, bool isApproved) {
    JSONArray roots;
    for (const auto& root : plan.roots) {
        roots.emplace_back(JSONObject{{"path", encodeJSON(root.url)},
                                      {"volumeUUID", encodeJSON(root.identity.volumeUUID)},
                                      {"inode", encodeJSON(root.identity.inode)}});
    }
    JSONArray items;
    for (const auto& item : plan.items)
        items.push_back(documentOf(item));
    JSONArray skipped;
    for (const auto& item : plan.skipped) {
        std::vector<JSONMember> entry{{"path", encodeJSON(item.url)}, {"reason", encodeJSON(item.reason)}};
        if (item.refusal) entry.emplace_back("sentence", encodeJSON(*item.refusal));
        skipped.emplace_back(JSONObject(std::move(entry)));
    }
    return JSONObject{{"ruleID", encodeJSON(plan.ruleID)},
                      {"createdAt", encodeJSON(plan.createdAt)},
                      {"roots", std::move(roots)},
                      {"items", std::move(items)},
                      {"skipped", std::move(skipped)},
                      {"limitedDates", plan.limitedDates},
                      {"totalBytes", encodeJSON(plan.totalBytes())},
                      {"approved", isApproved}};
}

}  // namespace vostrel::cli
