#include "cli/StoredRules.h"

#include <utility>

#include "cli/StateLock.h"

namespace vostrel::cli {

StoredRules::StoredRules(std::filesystem::path data, Clock present, Output& messages)
    : folder(std::move(data)), clock(std::move(present)), output(messages), store(folder) {}

std::expected<RuleBook, Failure> StoredRules::load() const {
    const auto lock = StateLock::takeToRead(folder);
    if (!lock) return std::unexpected(lock.error());
    return loaded(*lock ? DamagedFile::movesAside : DamagedFile::stays);
}

std::optional<RuleBook> StoredRules::asItIs() const {
    auto loaded = store.load(clock(), DamagedFile::stays);
    if (loaded.notRead) return std::nullopt;
    return std::move(loaded.value);
}

CommandResult StoredRules::change(const std::function<CommandResult(RuleBook&)>& change) const {
    const auto lock = StateLock::take(folder);
    if (!lock) return std::unexpected(lock.error());
    auto book = loaded(DamagedFile::movesAside);
    if (!book) return std::unexpected(book.error());
    if (auto changed = change(*book); !changed) return changed;
    store.removeLeftovers();
    if (const auto saved = store.save(*book); !saved)
        return failed("The rules were not saved: " + saved.error().description() + ".");
    return {};
}

std::expected<RuleBook, Failure> StoredRules::loaded(DamagedFile damaged) const {
    auto loaded = store.load(clock(), damaged);
    if (loaded.notRead) return failed(loaded.notRead->description() + ".");
    if (!loaded.recoveredFromCorruption) return std::move(loaded.value);
    if (!loaded.movedAsideTo)
        return failed((folder / "rules.json").native() +
                      " is damaged and could not be moved aside, so Vostrel leaves it as it is and saves no rules.");
    output.notice("The file rules.json was damaged. It was moved aside to " + loaded.movedAsideTo->native() +
                  ", and the rule book is empty now.");
    return std::move(loaded.value);
}

}  // namespace vostrel::cli
