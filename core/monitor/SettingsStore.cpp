#include "monitor/SettingsStore.h"

#include <utility>

#include "monitor/AppSettingsFields.h"
#include "platform/ApplicationData.h"
#include "platform/SystemKind.h"

namespace vostrel {

SettingsStore::SettingsStore(std::filesystem::path directory)
    : store(std::move(directory), "settings.json", JSONLayout::pretty, std::nullopt, [] { return AppSettings(); }) {}

std::filesystem::path SettingsStore::defaultDirectory(const std::filesystem::path& home,
                                                      const Environment& environment) {
    return applicationDataFolder(home, environment) / (systemKind() == SystemKind::macOS ? "Vostrel" : "vostrel");
}

SettingsLoadResult SettingsStore::load(Date now, DamagedFile damaged) const {
    auto loaded = store.load(now, damaged);
    return {.settings = std::move(loaded.value),
            .recoveredFromCorruption = loaded.recoveredFromCorruption,
            .movedAsideTo = std::move(loaded.movedAsideTo),
            .notRead = std::move(loaded.notRead)};
}

std::expected<void, StoreError> SettingsStore::save(const AppSettings& settings) const {
    return store.save(settings);
}

}  // namespace vostrel
