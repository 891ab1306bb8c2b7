#include "cleaning/CleanLog.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <ranges>
#include <tuple>

#include "base/LocalTime.h"
#include "cleaning/LogFolder.h"
#include "cleaning/LogPruning.h"
#include "cleaning/RunFields.h"
#include "cleaning/RunList.h"
#include "platform/SystemLog.h"
#include "stores/DateText.h"
#include "stores/LineFile.h"

namespace vostrel {

namespace {

namespace fs = std::filesystem;

constexpr const char* category = "Log";
constexpr const char* detailFolder = "runs";

bool isWantedInSummary(std::string_view key) {
    return key != "plannedPaths" && key != "outcomes";
}

bool isID(std::string_view key) {
    return key == "id";
}

/// The values of the lines that can be read.
template <class Value>
std::vector<Value> decodeLines(const std::optional<std::string>& text, const JSONDecoder& decoder) {
    std::vector<Value> values;
    std::string_view rest = text ? *text : std::string_view();
    while (!rest.empty()) {
        const auto end = std::min(rest.find('\n'), rest.size());
        if (auto value = decoder.decode<Value>(rest.substr(0, end))) values.push_back(std::move(*value));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return values;
}

/// Whether a run of that local day, in whatever time zone the day was, may have started then or later.
bool mayHold(const LogFile& dayFile, Date since) {
    constexpr auto westernmost = std::chrono::hours(12);
    const auto midnight = dateFromText(dayFile.name.substr(0, std::string_view("2025-03-07").size()) + "T00:00:00Z");
    return !midnight || *midnight + std::chrono::hours(24) + westernmost > since;
}

}  // namespace

CleanLog::IO CleanLog::IO::system() {
    return {.appendLine = [](std::string_view line, const fs::path& file) { return LineFile{file}.append(line); },
            .read = [](const fs::path& file) -> std::optional<std::string> {
                auto content = LineFile{file}.read();
                if (!content) return std::nullopt;
                return std::move(*content);
            }};
}

fs::path CleanLog::fileURL(Date day) const {
    return directory / (localDay(day) + ".jsonl");
}

fs::path CleanLog::sidecarURL(const Uuid& run) const {
    return directory / detailFolder / (run.text() + ".jsonl");
}

CleanLog::StartedRecord CleanLog::appendStarted(const RunReport& report) const {
    bool areListed = true;
    if (!report.plannedPaths.empty()) {
        const DetailLine line{.id = report.id, .plannedPaths = report.plannedPaths, .outcomes = {}};
        areListed = write(line, sidecarURL(report.id), "the planned items", report.id);
    }
    const fs::path file = fileURL(report.startedAt);
    if (write(report, file, "the run record", report.id)) return StartedRecord::full;
    RunReport compact = report.countsOnly();
    compact.plannedPathsNotLogged = !areListed;
    const bool isWritten = write(compact, file, "the short run record", report.id);
    return isWritten ? StartedRecord::compact : StartedRecord::notWritten;
}

bool CleanLog::append(const RunReport& report) const {
    if (report.status == RunStatus::started) return appendStarted(report) != StartedRecord::notWritten;
    if (!report.outcomes.empty() || !report.plannedPaths.empty()) {
        const DetailLine line{.id = report.id, .plannedPaths = {}, .outcomes = report.outcomes};
        std::ignore = write(line, sidecarURL(report.id), "the item list", report.id);
    }
    const fs::path file = fileURL(report.startedAt);
    return write(report, file, "the run record", report.id) ||
           write(report.countsOnly(), file, "the short run record", report.id);
}

template <class Value>
bool CleanLog::write(const Value& value, const fs::path& file, const char* what, const Uuid& run) const {
    const auto couldNot = [&](const std::string& why) {
        logError(category, fmt::format("Could not write {} for {}: {}", what, run.text(), why));
        return false;
    };
    const auto line = JSONCoding::encoder(JSONLayout::compact).encode(value);
    if (!line) return couldNot(line.error().text());
    if (const auto appended = io.appendLine(*line, file); !appended) return couldNot(appended.error().description());
    return true;
}

std::vector<RunReport> CleanLog::recent(std::size_t limit) const {
    RunList runs;
    // Of a run during which the time zone changed, the end may lie in the day before.
    bool mayEndInNextFile = false;
    for (const LogFile& dayFile : dayFilesIn(directory) | std::views::reverse) {
        const bool areEnough = runs.size() >= limit;
        if (areEnough && !mayEndInNextFile) break;
        const auto unfinished = runs.add(summariesIn(dayFile.url));
        mayEndInNextFile = !areEnough && unfinished;
    }
    auto newest = runs.newestFirst();
    if (newest.size() > limit) newest.resize(limit);
    return newest;
}

std::vector<RunReport> CleanLog::reports(Date since) const {
    RunList runs;
    for (const LogFile& dayFile : dayFilesIn(directory) | std::views::reverse) {
        if (mayHold(dayFile, since)) runs.add(summariesIn(dayFile.url));
    }
    auto newest = runs.newestFirst();
    std::erase_if(newest, [&](const RunReport& run) { return run.startedAt < since; });
    return newest;
}

std::vector<fs::path> CleanLog::unreadable() const {
    std::error_code problem;
    const fs::directory_iterator entries(directory, problem);
    if (problem == std::errc::no_such_file_or_directory) return {};
    if (problem) return {directory};
    std::vector<fs::path> files;
    for (const LogFile& dayFile : dayFilesIn(directory)) {
        if (!LineFile{dayFile.url}.isReadable()) files.push_back(dayFile.url);
    }
    return files;
}

RunDetails CleanLog::details(const Uuid& run) const {
    RunDetails details;
    for (auto& line : decodeLines<DetailLine>(io.read(sidecarURL(run)), JSONCoding::decoder())) {
        if (line.id != run) continue;
        if (line.plannedPaths) details.plannedPaths = std::move(*line.plannedPaths);
        if (line.outcomes) details.outcomes = std::move(*line.outcomes);
    }
    return details;
}

RunReport CleanLog::withLists(RunReport listed) const {
    RunDetails found = details(listed.id);
    listed.plannedPaths = std::move(found.plannedPaths);
    listed.outcomes = std::move(found.outcomes);
    if (!listed.plannedPaths.empty() && !listed.outcomes.empty()) return listed;
    for (auto& record : recordsIn(fileURL(listed.startedAt), JSONCoding::decoder())) {
        if (record.id != listed.id) continue;
        if (listed.plannedPaths.empty()) listed.plannedPaths = std::move(record.plannedPaths);
        if (listed.outcomes.empty()) listed.outcomes = std::move(record.outcomes);
    }
    return listed;
}

std::vector<RunReport> CleanLog::recordsIn(const fs::path& dayFile, const JSONDecoder& decoder) const {
    return decodeLines<RunReport>(io.read(dayFile), decoder);
}

std::vector<RunReport> CleanLog::summariesIn(const fs::path& dayFile) const {
    return recordsIn(dayFile, JSONCoding::decoder(isWantedInSummary));
}

CleanLog::Pruned CleanLog::prune(Date now) const {
    LogPruning pruning(directory, directory / detailFolder, [this](const fs::path& day) { return detailFilesOf(day); });
    pruning.removeBefore(fileURL(now - std::chrono::hours(24 * retentionDays)).filename());
    pruning.removeDownTo(maxTotalBytes);
    return {.files = pruning.removedFiles(), .bytes = pruning.removedBytes()};
}

std::vector<std::string> CleanLog::detailFilesOf(const fs::path& dayFile) const {
    std::vector<std::string> names;
    for (const auto& run : decodeLines<RunID>(io.read(dayFile), JSONCoding::decoder(isID)))
        names.push_back(sidecarURL(run.id).filename());
    return names;
}

}  // namespace vostrel
