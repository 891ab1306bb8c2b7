#include "cli/Places.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>
#include <system_error>

#include "base/PrintableText.h"
#include "monitor/SettingsStore.h"
#include "platform/UserAccount.h"

namespace vostrel::cli {

namespace fs = std::filesystem;

namespace {

std::expected<fs::path, Failure> namedHome(const fs::path& named) {
    std::error_code problem;
    fs::path home = fs::canonical(named, problem);
    struct stat facts = {};
    if (problem || ::stat(home.c_str(), &facts) != 0 || !S_ISDIR(facts.st_mode))
        return wrongCommandLine("--home: there is no folder " + named.native() + ".");
    if (facts.st_uid != effectiveUserID())
        return wrongCommandLine("--home: " + home.native() +
                                " belongs to another user, and Vostrel acts only in homes of yours.");
    return home;
}

std::expected<fs::path, Failure> ownHome() {
    std::error_code problem;
    fs::path home = fs::canonical(accountHome(), problem);
    if (problem) return failed("Your account has no home folder. Name one with --home.");
    return home;
}

/// $'a\012b': what could not be shown as it is, byte by byte.
std::string escapedForShell(const std::string& word) {
    std::string quoted = "$'";
    for (const char letter : word) {
        if (letter == '\'' || letter == '\\')
            quoted += fmt::format("\\{}", letter);
        else if (letter >= ' ' && letter <= '~')
            quoted += letter;
        else
            quoted += fmt::format("\\{:03o}", static_cast<unsigned char>(letter));
    }
    return quoted + "'";
}

/// In quotes where a shell would read something else.
std::string forShell(const std::string& word) {
    const auto isPlain = [](unsigned char letter) {
        return std::isalnum(letter) != 0 || std::string_view("/._-+,:@%").contains(static_cast<char>(letter));
    };
    if (!word.empty() && std::ranges::all_of(word, isPlain)) return word;
    if (printable(word) != word) return escapedForShell(word);
    std::string quoted = "'";
    for (const char letter : word)
        quoted += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
    return quoted + "'";
}

std::string textOf(const GlobalOptions& options) {
    std::string text;
    if (options.home) text += " --home " + forShell(options.home->native());
    if (options.data) text += " --data " + forShell(options.data->native());
    return text;
}

}  // namespace

std::expected<Places, Failure> placesFor(const GlobalOptions& options) {
    const auto home = options.home ? namedHome(*options.home) : ownHome();
    if (!home) return std::unexpected(home.error());
    Places places{.home = *home,
                  .accountHome = accountHome(),
                  .data = {},
                  .environment = processEnvironment(),
                  .options = textOf(options)};
    if (options.home)
        std::erase_if(places.environment, [](const auto& each) { return each.first.starts_with("XDG_"); });
    std::error_code problem;
    places.data = options.data ? fs::absolute(*options.data, problem)
                               : SettingsStore::defaultDirectory(places.home, places.environment);
    if (places.data.empty()) return wrongCommandLine("--data: a folder is needed.");
    return places;
}

}  // namespace vostrel::cli
