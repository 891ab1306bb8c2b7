#include "cleaning/RemovalOutcome.h"

#include <fmt/format.h>

#include <string>
#include <system_error>

#include "cleaning/ItemSentences.h"

namespace vostrel {

namespace {

using Status = ItemOutcome::Status;

constexpr std::string_view unknownReason = "Vostrel could not tell why the rest stayed";

std::string textOf(const Removal::Failure& failure) {
    return fmt::format("{} could not be deleted ({})", failure.path, std::generic_category().message(failure.code));
}

std::string whyTheRestStayed(const Removal& removal) {
    if (removal.replaced) return "it was moved or replaced while Vostrel was deleting it";
    if (removal.skippedChanged > 0) return "some of it changed after the preview";
    if (removal.firstError) return textOf(*removal.firstError);
    if (removal.skippedUnchecked > 0) return "Vostrel could not check part of it again";
    if (removal.stopped) return "the run was stopped";
    return std::string(unknownReason);
}

std::string partlyDeleted(const Removal& removal) {
    std::string what = "part of it";
    if (removal.removedFiles > 0)
        what = fmt::format("{} {} from it", removal.removedFiles, removal.removedFiles == 1 ? "file" : "files");
    return fmt::format("Vostrel deleted {}, but {}. The rest is still there.", what, whyTheRestStayed(removal));
}

struct Verdict {
    Status status;
    std::string message;
};

Verdict verdictOnNothingDeleted(const Removal& removal, const std::optional<StopReason>& stop) {
    if (removal.replaced == Removal::Replaced::parent)
        return {Status::refused, std::string(sentences::item::folderReplaced)};
    if (removal.replaced == Removal::Replaced::item)
        return {Status::changed, std::string(sentences::item::itemReplaced)};
    if (removal.skippedChanged > 0) return {Status::changed, std::string(sentences::item::changed)};
    if (removal.skippedUnchecked > 0) return {Status::changed, std::string(sentences::item::couldNotCheck)};
    if (removal.stopped && stop) return {Status::failed, "Nothing was deleted. " + stop->sentence()};
    const std::string why = removal.firstError ? textOf(*removal.firstError) : std::string(unknownReason);
    return {Status::failed, "Nothing was deleted: " + why + "."};
}

}  // namespace

ItemOutcome outcomeOf(const Removal& removal, const std::filesystem::path& item,
                      const std::optional<StopReason>& stop) {
    ItemOutcome outcome;
    outcome.path = item;
    outcome.bytes = removal.removedBytes;
    if (removal.isComplete && !removal.replaced) {
        outcome.status = Status::deleted;
        outcome.removedFiles = removal.removedFiles;
    } else if (removal.removedAnything()) {
        outcome.status = Status::partlyDeleted;
        outcome.removedFiles = removal.removedFiles;
        outcome.message = partlyDeleted(removal);
    } else {
        auto [status, message] = verdictOnNothingDeleted(removal, stop);
        outcome.status = status;
        outcome.message = std::move(message);
    }
    return outcome;
}

}  // namespace vostrel
