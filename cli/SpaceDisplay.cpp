#include "cli/SpaceDisplay.h"

#include <fmt/format.h>

#include <string>
#include <vector>

#include "base/SpaceFormat.h"
#include "monitor/AppSettingsFields.h"
#include "monitor/SpaceSentences.h"

namespace vostrel::cli {

namespace {

using Alignment = Output::Alignment;
using Style = Output::Style;

std::string lineText(const SpaceLine& line) {
    if (line.unit() == SpaceLineUnit::gigabytes) return "your line";
    return fmt::format("your line, {} of the disk", SpaceSentences::text(line));
}

}  // namespace

void showReading(Output& output, const MonitorReading& reading, const AppSettings& settings) {
    const VolumeCapacity& capacity = reading.capacity;
    const auto level = std::string(SpaceSentences::level(reading.level));
    const auto style = reading.level == SpaceLevel::normal ? Style::good : Style::warning;
    std::vector<Output::Row> rows{
        {SpaceFormat::bytes(capacity.total), "in all"},
        {SpaceFormat::bytes(capacity.used()), "used"},
        {{SpaceFormat::bytesFloor(capacity.displayedFree()), Style::bold},
         fmt::format("free, {}", SpaceFormat::percent(capacity.displayedFreeFraction()))},
    };
    if (capacity.availableImportant)
        rows.push_back(
            {SpaceFormat::bytesFloor(capacity.availableNow), "of it right now; the system makes the rest free"});
    rows.push_back({SpaceFormat::bytes(reading.lineBytes), lineText(settings.line)});
    output.table(rows, {Alignment::right, Alignment::left});
    output.line();
    output.line({{level, style}});
    for (const SpaceLine& crossed : reading.crossedAlertLevels)
        output.line({{SpaceSentences::alert(crossed, capacity), Style::warning}});
}

JSONValue documentOf(const MonitorReading& reading) {
    const VolumeCapacity& capacity = reading.capacity;
    std::vector<JSONMember> fields{
        {"total", capacity.total},
        {"availableNow", capacity.availableNow},
        {"displayedFree", capacity.displayedFree()},
        {"used", capacity.used()},
        {"level", encodeJSON(reading.level)},
        {"lineBytes", reading.lineBytes},
        {"crossedAlertLevels", encodeJSON(reading.crossedAlertLevels)},
    };
    if (capacity.availableImportant) fields.emplace_back("availableImportant", *capacity.availableImportant);
    return JSONObject(std::move(fields));
}

}  // namespace vostrel::cli
