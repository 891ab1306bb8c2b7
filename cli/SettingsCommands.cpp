#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "cli/Commands.h"
#include "cli/Session.h"
#include "cli/SettingsText.h"
#include "monitor/AppSettingsFields.h"

namespace vostrel::cli {

namespace {

using Alignment = Output::Alignment;
using Style = Output::Style;

struct WantedSetting {
    std::string key;
    std::string value;
};

CommandResult showSettings(Session& session) {
    const auto keeper = session.settings.load();
    if (!keeper) return std::unexpected(keeper.error());
    std::vector<Output::Row> rows;
    for (const NamedSetting& setting : namedSettings()) {
        rows.push_back({std::string(setting.key),
                        {setting.text(keeper->settings()), Style::bold},
                        {std::string(setting.meaning), Style::dim}});
    }
    session.output.table(rows, {Alignment::left, Alignment::left, Alignment::left});
    session.output.line();
    session.output.line({{"To change one: vostrel settings set KEY VALUE" + session.places.options, Style::dim}});
    return session.output.document(encodeJSON(keeper->settings()));
}

std::expected<const NamedSetting*, Failure> settingNamed(const std::string& key) {
    std::vector<std::string_view> keys;
    for (const NamedSetting& setting : namedSettings()) {
        if (setting.key == key) return &setting;
        keys.push_back(setting.key);
    }
    return wrongCommandLine(
        fmt::format("There is no setting \"{}\". The settings are {}.", key, fmt::join(keys, ", ")));
}

CommandResult changeSetting(Session& session, const WantedSetting& wanted) {
    const auto setting = settingNamed(wanted.key);
    if (!setting) return std::unexpected(setting.error());
    const auto& [key, meaning, text, parse] = **setting;
    const auto change = parse(wanted.value);
    if (!change) return wrongCommandLine(fmt::format("{}: {}, not \"{}\".", key, change.error(), wanted.value));

    AppSettings before;
    AppSettings after;
    const auto changed = session.settings.update([&](AppSettings& settings) {
        before = settings;
        change->apply(settings);
        after = settings;
    });
    if (!changed) return changed;
    for (const std::string& adjustment : change->adjustments)
        session.output.notice(adjustment);
    session.output.line(
        {before == after ? fmt::format("The setting \"{}\" is {} already; nothing was changed.", key, text(after))
                         : fmt::format("The setting \"{}\" is {} now. It was {}.", key, text(after), text(before))});
    return session.output.document(encodeJSON(after));
}

}  // namespace

void addSettingsCommands(CLI::App& app, Command& chosen) {
    CLI::App& group = *app.add_subcommand("settings", "What you have chosen, and how to change it")->fallthrough();
    group.require_subcommand(0, 1);
    group.callback([&chosen, &group] {
        if (group.get_subcommands().empty()) chosen = inSession(showSettings);
    });
    CLI::App& set = *group.add_subcommand("set", "Change one setting")->fallthrough();
    const auto wanted = std::make_shared<WantedSetting>();
    set.add_option("KEY", wanted->key, "Its name, as \"vostrel settings\" shows it")->required();
    set.add_option("VALUE", wanted->value, "What it is to be")->required();
    set.callback([&chosen, wanted] {
        chosen = inSession([wanted](Session& session) { return changeSetting(session, *wanted); });
    });
}

}  // namespace vostrel::cli
