#pragma once

#include <expected>
#include <filesystem>
#include <optional>

#include "base/Date.h"
#include "cli/CommandResult.h"
#include "cli/Output.h"
#include "monitor/SettingsKeeper.h"

namespace vostrel::cli {

/// The settings in the data folder, which other programs may be using at the same time.
///
/// A damaged file is moved aside, which is said once, and the defaults are saved in its place with automatic cleaning
/// paused: the next program would find no damage and clean by settings that nobody chose. A damaged file for which that
/// is impossible stays where it is and is a failure, as is one that the system had no means to read.
class StoredSettings {
public:
    StoredSettings(std::filesystem::path data, Clock present, Output& messages);

    [[nodiscard]] std::expected<SettingsKeeper, Failure> load() const;

    /// The settings as they lie there, for work that goes on meanwhile: waits for nobody, and leaves a damaged file,
    /// which pauses everything, to the next program. Nothing when the system had no means to read it.
    [[nodiscard]] std::optional<SettingsKeeper> asItIs() const;

    /// Loads the settings, changes and saves them, all of it while no other program can.
    [[nodiscard]] CommandResult update(const SettingsKeeper::Change& change) const;

private:
    [[nodiscard]] std::expected<SettingsKeeper, Failure> loaded(DamagedFile damaged) const;
    [[nodiscard]] CommandResult replaceDamaged(const std::filesystem::path& movedAside,
                                               const AppSettings& paused) const;

    std::filesystem::path folder;
    Clock clock;
    Output& output;
    SettingsStore store;
};

}  // namespace vostrel::cli
