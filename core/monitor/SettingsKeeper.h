#pragma once

#include <expected>
#include <functional>
#include <optional>

#include "monitor/SettingsStore.h"

namespace vostrel {

/// Holds the settings while a program runs, and decides whether they may drive what runs without the user.
///
/// Settings that come from a damaged file, or whose pause setting could not be read, are untrusted: automatic cleaning
/// is paused, and stays out of reach until the user says whether it may run and that is on disk. A value; not for
/// several threads.
class SettingsKeeper {
public:
    enum class Update {
        unchanged,            ///< nothing was changed, and nothing saved
        saved,                ///< changed and on disk
        notSaved,             ///< changed in memory only
        notSavedStillPaused,  ///< the same, but automatic cleaning stays paused
    };
    using Change = std::function<void(AppSettings&)>;
    using Save = std::function<std::expected<void, StoreError>(const AppSettings&)>;

    explicit SettingsKeeper(const SettingsLoadResult& loaded);

    [[nodiscard]] const AppSettings& settings() const { return current; }
    [[nodiscard]] bool trusted() const { return isTrusted; }
    /// A change is in memory only.
    [[nodiscard]] bool needsSave() const { return isUnsaved; }

    /// The settings for whatever runs without the user; nothing while they are untrusted.
    [[nodiscard]] std::optional<AppSettings> forAutomation() const;

    /// Changes the settings and saves them. Automatic cleaning ends its pause only when that is on disk; a change of
    /// the pause that is on disk makes the settings trusted.
    Update update(const Change& change, const Save& save);

    /// Saves what could not be saved before. Whether all is on disk now.
    bool retrySave(const Save& save);

private:
    AppSettings current;
    bool isTrusted;
    bool isUnsaved = false;
};

}  // namespace vostrel
