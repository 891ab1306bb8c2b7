#include "cli/FindDisplay.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "base/LocalTime.h"
#include "base/SpaceFormat.h"

namespace vostrel::cli {

namespace {

using Alignment = Output::Alignment;
using Style = Output::Style;

/// Prints one search.
class FoundDisplay {
public:
    FoundDisplay(Output& to, const PathGuards& ofUser, const FinderResult& found, const FindExtent& wanted)
        : output(to), guards(ofUser), result(found), extent(wanted) {}

    void show() {
        output.line({{fmt::format("{} in {}", counted(result.walk.filesSeen, "file", "files"),
                                  counted(result.walk.foldersRead, "folder", "folders")),
                      Style::dim}});
        if (extent.large) showLarge();
        if (extent.old) showOld();
        if (extent.duplicates) showGroups();
        showMissing();
    }

private:
    void heading(const std::string& title, const std::string& remark) {
        output.line();
        output.line({{title, Style::bold}, "  ", {remark, Style::dim}});
    }

    [[nodiscard]] static std::string threshold(std::int64_t bytes) {
        constexpr std::int64_t leastInUnits = 1'000'000;
        return bytes < leastInUnits ? counted(bytes, "byte", "bytes") : SpaceFormat::bytes(bytes);
    }

    [[nodiscard]] std::string shown(const FinderPath& path) const { return guards.displayPath(path.full()); }

    void more(std::size_t all, const char* what) {
        if (all <= extent.lines) return;
        const auto left = static_cast<std::int64_t>(all - extent.lines);
        output.line({{fmt::format("  … and {} more {}; --json lists them all.", grouped(left), what), Style::dim}});
    }

    void showFiles(const std::vector<FinderFile>& files) {
        std::vector<Output::Row> rows;
        for (const FinderFile& file : files) {
            if (rows.size() == extent.lines) break;
            Output::Row row{SpaceFormat::bytes(file.stamp.allocated)};
            if (file.lastOpened) row.emplace_back(localDay(file.lastOpened->date), Style::dim);
            row.emplace_back(shown(file.path));
            row.emplace_back(file.trashBlock.value_or(""), Style::dim);
            rows.push_back(std::move(row));
        }
        output.table(rows, {Alignment::right, Alignment::left, Alignment::left, Alignment::left});
        more(files.size(), "files");
    }

    void showLarge() {
        heading("Large files",
                fmt::format("{} of {} or more, {} together", counted(result.walk.largeCount, "file", "files"),
                            threshold(result.request.criteria.largeBytes), SpaceFormat::bytes(result.walk.largeBytes)));
        showFiles(result.large);
    }

    void showOld() {
        const FinderCriteria& criteria = result.request.criteria;
        heading("Old files",
                fmt::format("{} of {} or more, not used for {}", counted(std::ssize(result.old), "file", "files"),
                            threshold(criteria.oldMinBytes), counted(criteria.oldMonths, "month", "months")));
        showFiles(result.old);
    }

    void showGroups() {
        std::int64_t reclaimable = 0;
        for (const DuplicateGroup& group : result.groups)
            reclaimable = saturatingAdd(reclaimable, group.reclaimableBytes());
        heading("Duplicates",
                fmt::format("{} of {} or more, {} beside one copy of each",
                            counted(std::ssize(result.groups), "group", "groups"),
                            threshold(result.request.criteria.duplicateMinBytes), SpaceFormat::bytes(reclaimable)));
        for (std::size_t index = 0; index < std::min(result.groups.size(), extent.lines); ++index)
            showGroup(result.groups[index]);
        more(result.groups.size(), "groups");
    }

    void showGroup(const DuplicateGroup& group) {
        output.line({fmt::format("  {} of {} each", counted(std::ssize(group.copies), "copy", "copies"),
                                 SpaceFormat::bytes(group.size))});
        for (std::size_t index = 0; index < std::min(group.copies.size(), extent.lines); ++index) {
            const DuplicateCopy& copy = group.copies[index];
            const bool stays = index == 0 && !copy.mayVanish;
            const std::string remark = stays ? "  stays" : copy.trashBlock ? "  " + *copy.trashBlock : "";
            output.line({"    " + shown(copy.path), {remark, Style::dim}});
        }
        if (group.copies.size() > extent.lines) {
            const auto left = static_cast<std::int64_t>(group.copies.size() - extent.lines);
            output.line({{fmt::format("    … and {} more", grouped(left)), Style::dim}});
        }
    }

    void showMissing() {
        const FinderCandidates& walk = result.walk;
        const DuplicateOutcome& duplicates = result.duplicates;
        std::vector<std::string> sentences;
        const auto add = [&](std::int64_t count, const char* one, const char* many) {
            if (count > 0) sentences.push_back(counted(count, one, many));
        };
        add(walk.needsFullDiskAccessCount, "place needs Full Disk Access", "places need Full Disk Access");
        add(std::ssize(walk.leftOut), "place is left out on purpose", "places are left out on purpose");
        add(walk.leftOutLibraries, "media library was not searched", "media libraries were not searched");
        add(walk.packagesSkipped, "package was not searched", "packages were not searched");
        add(walk.repositoriesSkipped, "repository was not searched", "repositories were not searched");
        add(walk.unreadable, "entry could not be read", "entries could not be read");
        add(walk.notMeasured, "folder lies elsewhere or too deep", "folders lie elsewhere or too deep");
        add(walk.cloudOnlyFiles, "file is only in the cloud", "files are only in the cloud");
        add(walk.oldOverflow, "smaller old file was not looked at", "smaller old files were not looked at");
        add(walk.poolOverflow, "smaller file was not compared", "smaller files were not compared");
        add(result.oldNotChecked, "old file was not checked in time", "old files were not checked in time");
        add(duplicates.sharedSpaceFiles, "file shares its space with another", "files share their space with others");
        add(duplicates.inICloud, "file in iCloud was not compared", "files in iCloud were not compared");
        add(duplicates.couldNotCheckICloud, "file may be in iCloud and was not compared",
            "files may be in iCloud and were not compared");
        add(duplicates.changedOrUnreadable, "file changed meanwhile or could not be read",
            "files changed meanwhile or could not be read");
        if (sentences.empty()) return;
        output.line();
        for (const std::string& sentence : sentences)
            output.line({{sentence, Style::dim}});
    }

    Output& output;
    const PathGuards& guards;
    const FinderResult& result;
    const FindExtent& extent;
};

}  // namespace

void showFound(Output& output, const PathGuards& guards, const FinderResult& result, const FindExtent& extent) {
    FoundDisplay(output, guards, result, extent).show();
}

std::string problemSentence(const FinderUnsearchedRoot& root, const PathGuards& guards) {
    using Kind = FinderRootProblem::Kind;
    const std::string shown = guards.displayPath(root.given);
    switch (root.problem.kind) {
        case Kind::missing:
            return "There is nothing at " + shown + ".";
        case Kind::link:
            return shown + " is a link. Name the folder that it leads to.";
        case Kind::notAFolder:
            return shown + " is not a folder.";
        case Kind::unreadable:
            break;
    }
    return fmt::format("{}: {}.", shown, shownText(root.problem.reason.value_or(UnreadableReason::unknown)));
}

}  // namespace vostrel::cli
