#pragma once

#include <expected>
#include <filesystem>
#include <optional>

#include "monitor/AppSettings.h"
#include "platform/ProcessEnvironment.h"
#include "stores/CodableFileStore.h"

namespace vostrel {

/// What a load of the settings gives.
struct SettingsLoadResult {
    AppSettings settings;
    /// The file was there but could not be used; the settings are the defaults.
    bool recoveredFromCorruption = false;
    /// Where the damaged file now lies; without such a place it is still where it was.
    std::optional<std::filesystem::path> movedAsideTo;
    /// The system had no means to read the file (see `FileLoadResult`); the settings are the defaults.
    std::optional<SystemError> notRead = std::nullopt;

    /// Whether these are the user's own settings, so that they may drive what runs without the user.
    [[nodiscard]] bool trusted() const {
        return !recoveredFromCorruption && !notRead && !settings.pauseSettingUnreadable;
    }
};

/// Keeps the settings in "settings.json", indented for people. A missing file is the defaults; a file that cannot be
/// used as a whole is moved aside (see `CodableFileStore`). Takes no lock; any thread.
class SettingsStore {
public:
    explicit SettingsStore(std::filesystem::path directory);

    /// Vostrel's folder among those that applications keep for the user of this home. It need not exist.
    [[nodiscard]] static std::filesystem::path defaultDirectory(const std::filesystem::path& home,
                                                                const Environment& environment);

    [[nodiscard]] const std::filesystem::path& directory() const { return store.directory(); }
    [[nodiscard]] std::filesystem::path fileURL() const { return store.fileURL(); }
    [[nodiscard]] SettingsLoadResult load(Date now, DamagedFile damaged = DamagedFile::movesAside) const;
    void removeLeftovers() const { store.removeLeftovers(); }
    [[nodiscard]] std::expected<void, StoreError> save(const AppSettings& settings) const;

private:
    CodableFileStore<AppSettings> store;
};

}  // namespace vostrel
