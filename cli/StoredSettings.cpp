#include "cli/StoredSettings.h"

#include <string>
#include <system_error>
#include <utility>

#include "cli/StateLock.h"

namespace vostrel::cli {

namespace {

std::string notSaved(const StoreError& error) {
    return "The settings were not saved: " + error.description() + ".";
}

}  // namespace

StoredSettings::StoredSettings(std::filesystem::path data, Clock present, Output& messages)
    : folder(std::move(data)), clock(std::move(present)), output(messages), store(folder) {}

std::expected<SettingsKeeper, Failure> StoredSettings::load() const {
    const auto lock = StateLock::takeToRead(folder);
    if (!lock) return std::unexpected(lock.error());
    return loaded(*lock ? DamagedFile::movesAside : DamagedFile::stays);
}

std::optional<SettingsKeeper> StoredSettings::asItIs() const {
    const auto loaded = store.load(clock(), DamagedFile::stays);
    return loaded.notRead ? std::nullopt : std::optional(SettingsKeeper(loaded));
}

CommandResult StoredSettings::update(const SettingsKeeper::Change& change) const {
    const auto lock = StateLock::take(folder);
    if (!lock) return std::unexpected(lock.error());
    auto keeper = loaded(DamagedFile::movesAside);
    if (!keeper) return std::unexpected(keeper.error());

    std::string problem;
    const auto save = [&](const AppSettings& settings) {
        store.removeLeftovers();
        auto saved = store.save(settings);
        if (!saved) problem = notSaved(saved.error());
        return saved;
    };
    using enum SettingsKeeper::Update;
    const auto result = keeper->update(change, save);
    // What could not be read of the file is settled by what stands in for it.
    const bool isSettled = result == unchanged && (keeper->trusted() || save(keeper->settings()));
    if (isSettled || result == saved) return {};
    Failure failure{.sentences = {problem}};
    if (result == notSavedStillPaused) failure.sentences.emplace_back("Automatic cleaning stays paused.");
    return std::unexpected(std::move(failure));
}

std::expected<SettingsKeeper, Failure> StoredSettings::loaded(DamagedFile damaged) const {
    const auto loaded = store.load(clock(), damaged);
    if (loaded.notRead) return failed(loaded.notRead->description() + ".");
    SettingsKeeper keeper(loaded);
    if (loaded.movedAsideTo) {
        if (auto replaced = replaceDamaged(*loaded.movedAsideTo, keeper.settings()); !replaced)
            return std::unexpected(std::move(replaced.error()));
    } else if (loaded.recoveredFromCorruption) {
        return failed(store.fileURL().native() +
                      " is damaged and could not be moved aside, so Vostrel leaves it as it is and saves no settings.");
    } else if (!keeper.trusted()) {
        output.notice(
            "The pause setting in settings.json cannot be read, so automatic cleaning is paused until you say "
            "otherwise with \"vostrel settings set paused no\".");
    }
    return keeper;
}

CommandResult StoredSettings::replaceDamaged(const std::filesystem::path& movedAside, const AppSettings& paused) const {
    if (const auto saved = store.save(paused); !saved) {
        std::error_code ignored;
        std::filesystem::rename(movedAside, store.fileURL(), ignored);
        return std::unexpected(Failure{.sentences = {"The file settings.json is damaged.", notSaved(saved.error())}});
    }
    output.notice("The file settings.json was damaged. It was moved aside to " + movedAside.native() +
                  ". The settings are the ones that Vostrel starts with, and automatic cleaning is paused.");
    return {};
}

}  // namespace vostrel::cli
