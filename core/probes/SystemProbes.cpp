#include "probes/SystemProbes.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <expected>
#include <utility>
#include <variant>

#include "base/UnicodeText.h"
#include "filesystem/SizeWalker.h"
#include "platform/ExecutablePath.h"
#include "platform/FileStatus.h"
#include "probes/MemoryConsumers.h"
#include "probes/SimulatorImagesPlist.h"
#include "probes/SoftwareUpdatePlist.h"
#include "probes/SystemText.h"
#include "stores/StoredFile.h"

namespace vostrel {

namespace {

using std::chrono::seconds;

/// Why a probe is not begun.
std::optional<ProbeUnknown> notBegun(const WalkBudget& budget) {
    if (budget.isCancelled && budget.isCancelled()) return ProbeUnknown::cancelled;
    if (budget.isSpent()) return ProbeUnknown::notChecked;
    return std::nullopt;
}

ProbeUnknown unknownBecause(ProcessFailure failure) {
    if (failure.kind == ProcessFailure::Kind::timedOut) return ProbeUnknown::timedOut;
    if (failure.kind == ProcessFailure::Kind::cancelled) return ProbeUnknown::cancelled;
    return ProbeUnknown::failed;
}

template <class Value>
ProbeValue<Value> recognized(std::optional<Value> value) {
    if (!value) return ProbeUnknown::unrecognized;
    return *std::move(value);
}

std::optional<std::string> contentOf(const std::filesystem::path& path) {
    auto content = StoredFile{.directory = path.parent_path(), .name = path.filename(), .mode = {}}.read();
    return content ? std::optional(*std::move(content)) : std::nullopt;
}

std::optional<bool> isFolder(const std::filesystem::path& path) {
    const auto status = statusOfPath(path);
    if (status && status->type == EntryType::folder) return true;
    if (!status && status.error() == ENOENT) return false;
    return std::nullopt;
}

/// A runtime is a few files at most: one that takes longer to measure is not worth the wait.
std::optional<std::int64_t> allocatedBytes(const std::filesystem::path& path) {
    const auto status = statusOfPath(path);
    if (!status) return std::nullopt;
    if (status->type == EntryType::file) return status->allocated;
    if (status->type != EntryType::folder) return std::nullopt;
    const SizeWalker walker{.access = [](const std::string&) { return AccessDecision{}; }};
    LinkSet links;
    const WalkBudget budget{.deadline = Date::now() + seconds(10), .isCancelled = {}};
    const WalkResult walked = walker.walk(path, {}, budget, links);
    const auto* measured = std::get_if<Measured>(&walked);
    if (measured == nullptr || !measured->totals.isComplete()) return std::nullopt;
    return measured->totals.allocatedBytes;
}

}  // namespace

const std::map<ProbeCommand, Duration>& SystemProbes::timeouts() {
    static const std::map<ProbeCommand, Duration> table{
        {ProbeCommand::swapUsage(), seconds(5)},
        {ProbeCommand::localSnapshots(), seconds(15)},
        {ProbeCommand::topMemory(), seconds(10)},
    };
    return table;
}

SystemProbes SystemProbes::ofThisSystem(std::shared_ptr<ProcessRunning> runner) {
    return {.runner = std::move(runner),
            .readFile = contentOf,
            .folderExists = isFolder,
            .allocatedSize = allocatedBytes,
            .executablePath = vostrel::executablePath};
}

ProbeResults SystemProbes::run(const WalkBudget& budget) const {
    ProbeResults results;
    results.swap = swap(budget);
    results.localSnapshots = localSnapshots(budget);
    results.updatePlist = updatePlist(budget);
    results.simulatorImages = simulatorImages(budget);
    results.memory = memory(budget);
    return results;
}

std::expected<std::string, ProbeUnknown> SystemProbes::answer(const ProbeCommand& command,
                                                              const WalkBudget& budget) const {
    if (const auto reason = notBegun(budget)) return std::unexpected(*reason);
    Duration timeout = timeouts().at(command);
    if (budget.deadline != Date::distantFuture()) timeout = std::min(timeout, budget.deadline - budget.clock());
    const auto result = runner->run(command, timeout, budget.isCancelled);
    if (!result) return std::unexpected(unknownBecause(result.error()));
    return result->text();
}

ProbeValue<SwapUsage> SystemProbes::swap(const WalkBudget& budget) const {
    const auto text = answer(ProbeCommand::swapUsage(), budget);
    if (!text) return text.error();
    return recognized(parseSwapUsage(*text));
}

ProbeValue<std::vector<std::string>> SystemProbes::localSnapshots(const WalkBudget& budget) const {
    const auto text = answer(ProbeCommand::localSnapshots(), budget);
    if (!text) return text.error();
    return recognized(parseLocalSnapshots(*text));
}

ProbeValue<UpdatePlistInfo> SystemProbes::updatePlist(const WalkBudget& budget) const {
    if (const auto reason = notBegun(budget)) return *reason;
    const auto bytes = readFile(SoftwareUpdatePlist::path);
    if (!bytes) return ProbeUnknown::unreadable;
    return recognized(SoftwareUpdatePlist::parse(*bytes));
}

ProbeValue<std::vector<SimulatorImage>> SystemProbes::simulatorImages(const WalkBudget& budget) const {
    if (const auto reason = notBegun(budget)) return *reason;
    const auto bytes = readFile(SimulatorImagesPlist::path);
    // Where the folder was never made, no runtime was ever installed; but only a Mac can say so.
    if (!bytes && folderExists("/Library") == true && folderExists(SimulatorImagesPlist::folder) == false)
        return std::vector<SimulatorImage>{};
    if (!bytes) return ProbeUnknown::unreadable;
    auto images = SimulatorImagesPlist::parse(*bytes);
    if (!images) return ProbeUnknown::unrecognized;
    for (SimulatorImage& image : *images) {
        if (!budget.isSpent()) image.bytes = allocatedSize(image.path);
    }
    return *std::move(images);
}

ProbeValue<std::vector<MemoryConsumer>> SystemProbes::memory(const WalkBudget& budget) const {
    const auto text = answer(ProbeCommand::topMemory(), budget);
    if (!text) return text.error();
    auto rows = parseTopMemory(*text);
    if (!rows) return ProbeUnknown::unrecognized;
    for (MemoryRow& row : *rows)
        row.command = fullName(row);
    return memoryConsumers(*rows);
}

/// The table cuts names to 16 bytes, and a blank at the cut goes too. The process may have ended since and its number
/// be another's, so the whole name must begin as the cut one does.
std::string SystemProbes::fullName(const MemoryRow& row) const {
    constexpr std::size_t shortestCut = 15;
    if (row.command.size() < shortestCut) return row.command;
    const auto path = executablePath(row.pid);
    if (!path) return row.command;
    const std::string name = path->filename();
    return name.starts_with(row.command) && isValidUTF8(name) ? name : row.command;
}

}  // namespace vostrel
