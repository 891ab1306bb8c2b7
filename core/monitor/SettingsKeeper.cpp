#include "monitor/SettingsKeeper.h"

#include <utility>

namespace vostrel {

SettingsKeeper::SettingsKeeper(const SettingsLoadResult& loaded)
    : current(loaded.settings), isTrusted(loaded.trusted()) {
    if (!isTrusted) current.automaticCleaningPaused = true;
    current.pauseSettingUnreadable = false;
}

std::optional<AppSettings> SettingsKeeper::forAutomation() const {
    return isTrusted ? std::optional(current) : std::nullopt;
}

SettingsKeeper::Update SettingsKeeper::update(const Change& change, const Save& save) {
    AppSettings changed = current;
    change(changed);
    if (changed == current) return Update::unchanged;

    const bool pauseChanged = changed.automaticCleaningPaused != current.automaticCleaningPaused;
    current = std::move(changed);
    if (save(current)) {
        isUnsaved = false;
        if (pauseChanged) isTrusted = true;
        return Update::saved;
    }
    isUnsaved = true;
    if (!pauseChanged || current.automaticCleaningPaused) return Update::notSaved;
    current.automaticCleaningPaused = true;
    return Update::notSavedStillPaused;
}

bool SettingsKeeper::retrySave(const Save& save) {
    if (isUnsaved && save(current)) isUnsaved = false;
    return !isUnsaved;
}

}  // namespace vostrel
