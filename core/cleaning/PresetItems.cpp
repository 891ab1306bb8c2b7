#include "cleaning/PresetItems.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "base/SystemError.h"
#include "base/UnicodeText.h"
#include "filesystem/FileFacts.h"
#include "platform/FileStatus.h"
#include "platform/FolderListing.h"
#include "platform/FolderOpening.h"
#include "platform/OwnedDescriptor.h"
#include "rules/FullPath.h"

namespace vostrel {

namespace {

class NewestSink final : public EntrySink {
public:
    explicit NewestSink(Date first) : newest(first) {}
    void entry(const FolderEntry& entry) override {
        if (entry.error != 0 || entry.type == EntryType::link) {
            newest = Date::distantFuture();
        } else if (entry.type == EntryType::folder) {
            folders.emplace_back(entry.name);  // it tells its own dates when it is opened
        } else {
            newest = std::max(newest, entry.modified);
        }
    }

    Date newest;
    std::vector<std::string> folders;
};

class NamesSink final : public EntrySink {
public:
    void entry(const FolderEntry& entry) override { names.emplace_back(entry.name); }

    std::vector<std::string> names;
};

/// Whether the folder could be listed to its end.
bool list(const std::filesystem::path& path, EntrySink& sink) {
    const OwnedDescriptor folder(openFolder(path));
    if (!folder.isOpen()) return false;
    FolderListing listing(ListingDetail::facts);
    for (;;) {
        const auto step = listing.readSome(folder.get(), sink);
        if (!step) return false;
        if (*step == FolderListing::Step::end) return true;
    }
}

/// When something was last written to a folder, to a file directly in it, or so in its subfolders down to that many
/// levels. What is not there was never written; what cannot be read, or lies behind a link, may have been just now.
Date lastWritten(const std::filesystem::path& path, int levels) {
    const auto status = statusOfPath(path);
    if (!status) return isMissing(status.error()) ? Date::distantPast() : Date::distantFuture();
    if (status->type != EntryType::folder) return status->modified;
    NewestSink sink(status->modified);
    if (!list(path, sink)) return Date::distantFuture();
    if (levels == 0) return sink.newest;
    for (const std::string& name : sink.folders)
        sink.newest = std::max(sink.newest, lastWritten(path / name, levels - 1));
    return sink.newest;
}

}  // namespace

std::expected<PresetItems, std::string> PresetItems::of(const Preset& preset, std::filesystem::path home) {
    auto names = PresetNames::compile(preset.namePatterns);
    if (!names) return std::unexpected(std::move(names.error()));
    auto kept = PresetNames::compile(preset.excludePatterns);
    if (!kept) return std::unexpected(std::move(kept.error()));
    auto inside = PresetNames::compile(preset.namesInside);
    if (!inside) return std::unexpected(std::move(inside.error()));
    return PresetItems(preset, std::move(home), *std::move(names), *std::move(kept), *std::move(inside));
}

bool PresetItems::keeps(std::string_view name, EntryType type) const {
    return kept.matchesAny(name) || (preset->foldersOnly && type == EntryType::file);
}

std::optional<std::string> PresetItems::refusal(const std::filesystem::path& item) const {
    for (const std::string& name : preset->historyInside) {
        const auto status = statusOfPath(item / name);
        if (!status && isMissing(status.error())) continue;
        return "It holds \"" + name + "\", earlier versions of your own files, so Vostrel leaves it alone.";
    }
    if (inside.isEmpty()) return std::nullopt;
    NamesSink sink;
    if (!list(item, sink)) return "Vostrel could not read what is in it, so it leaves it alone.";
    const auto odd = std::ranges::find_if_not(sink.names, [&](const auto& name) { return inside.matchesAny(name); });
    if (odd == sink.names.end()) return std::nullopt;
    return "It holds " + (isValidUTF8(*odd) ? "\"" + *odd + "\"" : "something") +
           ", which does not look like a tool put it there, so Vostrel leaves it alone.";
}

bool PresetItems::letsGo(const MeasuredItem& item, const std::filesystem::path& path, Date now) const {
    if (!isOldEnough(ageDateOf(item, path, preset->ageBasis), preset->minAgeDays, now)) return false;
    return std::ranges::all_of(preset->usedBeside, [&](const std::string& folder) {
        const auto entry = home / folder / path.filename();
        return !leadsThroughLink(entry, {home}) && isOldEnough(lastWritten(entry, 1), preset->minAgeDays, now);
    });
}

bool isOldEnough(Date date, std::optional<int> days, Date now) {
    if (!days) return true;
    // More days than a date can be old: multiplied out they would wrap round to few.
    constexpr int longest = std::chrono::floor<std::chrono::days>(Duration::max()).count();
    return *days <= longest && date <= now - std::chrono::days(*days);
}

}  // namespace vostrel
