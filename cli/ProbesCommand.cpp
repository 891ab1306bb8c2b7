#include <fmt/format.h>

#include <memory>

#include "base/LocalTime.h"
#include "base/SpaceFormat.h"
#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/Program.h"
#include "probes/ProbeResultsFields.h"
#include "probes/SimulatorImagesPlist.h"
#include "probes/SystemProbes.h"
#include "probes/SystemProcessRunner.h"

namespace vostrel::cli {

namespace {

using Alignment = Output::Alignment;
using Style = Output::Style;

/// What is shown of one answer: its gist, and the rows below it.
struct Shown {
    Output::Row gist;
    std::vector<Output::Row> rows;
};

Shown shown(const SwapUsage& swap) {
    auto text = fmt::format("{} of {} in use", SpaceFormat::bytes(swap.usedBytes), SpaceFormat::bytes(swap.totalBytes));
    const bool isHigh = swap.usedBytes >= SystemProbes::highSwapBytes;
    return {.gist = {{isHigh ? text + ", which is much" : text, isHigh ? Style::warning : Style::plain}}, .rows = {}};
}

Shown shown(const std::vector<std::string>& snapshots) {
    Shown all{.gist = {{counted(std::ssize(snapshots), "snapshot", "snapshots")}}, .rows = {}};
    for (const std::string& name : snapshots)
        all.rows.push_back({name});
    return all;
}

Shown shown(const UpdatePlistInfo& info) {
    auto text = counted(std::ssize(info.updates), "update waits", "updates wait");
    if (info.lastCheck) text += ", last looked for " + localTime(*info.lastCheck);
    Shown all{.gist = {{text}}, .rows = {}};
    for (const RecommendedUpdate& update : info.updates)
        all.rows.push_back({update.name, update.version.value_or("")});
    return all;
}

Shown shown(const std::vector<SimulatorImage>& images) {
    Shown all{.gist = {{counted(std::ssize(images), "runtime", "runtimes")}}, .rows = {}};
    for (const SimulatorImage& image : images) {
        all.rows.push_back({image.runtime ? SimulatorImagesPlist::runtimeName(*image.runtime) : image.identifier,
                            image.bytes ? SpaceFormat::bytes(*image.bytes) : "size not known",
                            image.lastUsed ? "last used " + localTime(*image.lastUsed) : ""});
    }
    return all;
}

Shown shown(const std::vector<MemoryConsumer>& consumers) {
    Shown all{.gist = {{"most of it is used by"}}, .rows = {}};
    for (const MemoryConsumer& consumer : consumers) {
        all.rows.push_back(
            {consumer.name, SpaceFormat::bytes(consumer.bytes), counted(consumer.processes, "process", "processes")});
    }
    return all;
}

template <class Value>
void show(Output& output, const std::string& title, const ProbeValue<Value>& answer) {
    const auto value = answer.value();
    Shown all = value ? shown(*value) : Shown{};
    if (!value) all.gist = {{"not known: ", Style::dim}, {std::string(shownText(*answer.unknown())), Style::dim}};
    all.gist.insert(all.gist.begin(), {fmt::format("{:<18}", title), Style::bold});
    output.line(all.gist);
    output.table(all.rows, {Alignment::left, Alignment::left, Alignment::left});
}

CommandResult showProbes(Program& program) {
    const auto probes = SystemProbes::ofThisSystem(std::make_shared<SystemProcessRunner>());
    const ProbeResults results = probes.run({.isCancelled = Interrupt::requested});
    if (Interrupt::requested()) return failed(Interrupt::sentence);
    show(program.output, "Swap", results.swap);
    show(program.output, "Local snapshots", results.localSnapshots);
    show(program.output, "Updates", results.updatePlist);
    show(program.output, "Simulators", results.simulatorImages);
    show(program.output, "Memory", results.memory);
    return program.output.document(encodeJSON(results));
}

}  // namespace

void addProbesCommand(CLI::App& app, Command& chosen) {
    app.add_subcommand("probes", "What the system says of space that no folder shows")
        ->fallthrough()
        ->callback([&chosen] { chosen = showProbes; });
}

}  // namespace vostrel::cli
