#include "cleaning/PresetItems.h"

#include <algorithm>
#include <chrono>

#include "base/SystemError.h"
#include "filesystem/FileFacts.h"
#include "platform/FileStatus.h"
#include "platform/FolderListing.h"
#include "platform/FolderOpening.h"
#include "platform/OwnedDescriptor.h"

namespace vostrel {

namespace {

class NewestSink final : public EntrySink {
public:
    explicit NewestSink(Date first) : newest(first) {}
    void entry(const FolderEntry& entry) override {
        newest = std::max(newest, entry.error != 0 ? Date::distantFuture() : entry.modified);
    }

    Date newest;
};

/// When something was last written to a folder or to a file directly in it. What is not there was never written;
/// what cannot be read may have been just now.
Date lastWritten(const std::filesystem::path& path) {
    const auto status = statusOfPath(path);
    if (!status) return isMissing(status.error()) ? Date::distantPast() : Date::distantFuture();
    if (status->type != EntryType::folder) return status->modified;
    const OwnedDescriptor folder(openFolder(path));
    if (!folder.isOpen()) return Date::distantFuture();
    NewestSink sink(status->modified);
    FolderListing listing(ListingDetail::facts);
    for (;;) {
        const auto step = listing.readSome(folder.get(), sink);
        if (!step) return Date::distantFuture();
        if (*step == FolderListing::Step::end) return sink.newest;
    }
}

}  // namespace

std::expected<PresetItems, std::string> PresetItems::of(const Preset& preset, std::filesystem::path home) {
    auto names = Glob::Patterns::compile(preset.namePatterns);
    if (!names) return std::unexpected(std::move(names.error()));
    auto kept = Glob::Patterns::compile(preset.excludePatterns);
    if (!kept) return std::unexpected(std::move(kept.error()));
    return PresetItems(preset, std::move(home), *std::move(names), *std::move(kept));
}

bool PresetItems::letsGo(const MeasuredItem& item, const std::filesystem::path& path, Date now) const {
    if (!isOldEnough(ageDateOf(item, path, preset->ageBasis), preset->minAgeDays, now)) return false;
    return std::ranges::all_of(preset->usedBeside, [&](const std::string& folder) {
        return isOldEnough(lastWritten(home / folder / path.filename()), preset->minAgeDays, now);
    });
}

bool isOldEnough(Date date, std::optional<int> days, Date now) {
    if (!days) return true;
    // More days than a date can be old: multiplied out they would wrap round to few.
    constexpr int longest = std::chrono::floor<std::chrono::days>(Duration::max()).count();
    return *days <= longest && date <= now - std::chrono::days(*days);
}

}  // namespace vostrel
