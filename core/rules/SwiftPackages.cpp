#include "rules/SwiftPackages.h"

#include <fmt/format.h>

#include <algorithm>
#include <sstream>
#include <string_view>
#include <utility>

#include "rules/GitIndex.h"
#include "rules/JSONLookup.h"
#include "stores/JSONCoding.h"

namespace vostrel {

namespace {

std::map<std::string, std::string> checkoutsOf(const JSONValue* state) {
    std::map<std::string, std::string> checkouts;
    for (const JSONValue& dependency : listIn(state, "dependencies")) {
        const std::string name = textIn(valueIn(&dependency, "state"), "name");
        if (name != "sourceControlCheckout" && name != "checkout") continue;
        const JSONValue* package = valueIn(&dependency, "packageRef");
        std::string origin = textIn(package, "location");
        if (origin.empty()) origin = textIn(package, "path");
        checkouts[textIn(&dependency, "subpath")] = std::move(origin);
    }
    return checkouts;
}

std::set<std::string> artifactsOf(const JSONValue* state) {
    std::set<std::string> artifacts;
    for (const JSONValue& artifact : listIn(state, "artifacts")) {
        if (textIn(valueIn(&artifact, "source"), "type") != "remote") continue;
        artifacts.insert(textIn(valueIn(&artifact, "packageRef"), "identity") + "/" + textIn(&artifact, "targetName"));
    }
    return artifacts;
}

bool isNumber(char each) {
    return each >= '0' && each <= '9';
}

bool isHexadecimal(char each) {
    return isNumber(each) || (each >= 'a' && each <= 'f');
}

/// The last part of where a package came from, without ".git".
std::string baseNameOf(std::string origin) {
    while (origin.ends_with('/'))
        origin.pop_back();
    if (origin.ends_with(".git")) origin.resize(origin.size() - std::string_view(".git").size());
    return origin.substr(origin.find_last_of("/:") + 1);
}

/// "name-0123abcd": eight digits of a hash, of which one in fifty is a number and might be a date.
bool isCloneOf(const std::string& origin, std::string_view name) {
    constexpr std::size_t length = 8;
    const std::string begins = baseNameOf(origin) + "-";
    if (!name.starts_with(begins) || name.size() != begins.size() + length) return false;
    const auto hash = name.substr(begins.size());
    return std::ranges::all_of(hash, isHexadecimal) && !std::ranges::all_of(hash, isNumber);
}

/// "url = https://host/a.git", the only one.
std::string originIn(const std::string& gitConfiguration) {
    constexpr std::string_view begins = "url = ";
    std::istringstream lines(gitConfiguration);
    std::string origin;
    for (std::string line; std::getline(lines, line);) {
        const auto start = std::min(line.find_first_not_of(" \t"), line.size());
        if (std::string_view(line).substr(start).starts_with(begins) && origin.empty())
            origin = line.substr(start + begins.size());
    }
    return origin;
}

bool isAsGitLeftIt(const GitIndex::Entry& entry, const FileStatus& status) {
    if (entry.isLink) return status.type == EntryType::link;
    const bool isOfThatTime =
        static_cast<std::uint32_t>(status.modified.seconds()) == entry.modifiedSeconds &&
        (entry.modifiedNanoseconds == 0 || status.modified.nanosecondsOfSecond() == entry.modifiedNanoseconds);
    return status.type == EntryType::file && static_cast<std::uint32_t>(status.length) == entry.length && isOfThatTime;
}

}  // namespace

SwiftPackages::SwiftPackages(ArtifactReader& from, std::string folder) : reader(from), packages(std::move(folder)) {
    const auto document = JSONCoding::decoder().decode(reader.textOf(packages + "/workspace-state.json").value_or(""));
    const JSONValue* state = document ? valueIn(&*document, "object") : nullptr;
    checkouts = checkoutsOf(state);
    artifacts = artifactsOf(state);
}

/// Anything else may be a repository with work in it.
bool SwiftPackages::areAllListed() {
    const auto holdsOnly = [&](const std::string& folder, auto isListed) {
        if (!reader.exists(folder)) return true;
        const auto content = reader.contentOf(folder);
        return content && content->files.empty() && content->links.empty() &&
               std::ranges::all_of(content->folders, isListed);
    };
    std::set<std::string> known;
    return holdsOnly(packages + "/checkouts", [&](const std::string& name) { return checkouts.contains(name); }) &&
           holdsOnly(packages + "/repositories", [&](const std::string& name) { return isClone(name, known); }) &&
           std::ranges::all_of(checkouts,
                               [&](const auto& checkout) {
                                   return isGitsOwn(fmt::format("{}/checkouts/{}/.git", packages, checkout.first));
                               }) &&
           holdsOnlyListedArtifacts() && isUnchanged(packages + "/artifacts") && isUnchanged(packages + "/prebuilts");
}

/// What names commits in a repository, and where that was noted.
bool SwiftPackages::isGitsOwn(const std::string& repository) {
    return holdsOnlyReferences(repository + "/refs") && holdsOnlyReferences(repository + "/logs");
}

/// Whether every file in a folder, if it is there, begins with a commit's digits, or refers to another such file.
bool SwiftPackages::holdsOnlyReferences(const std::string& folder) {
    constexpr std::size_t digits = 40;
    return reader.isTrueThroughout(folder, [&](const ArtifactContent& content) {
        return std::ranges::all_of(content.files, [&](const std::string& name) {
            const std::string text = reader.textOf(fmt::format("{}/{}", content.path, name)).value_or("");
            return text.starts_with("ref: refs/") ||
                   (text.size() > digits && std::ranges::all_of(text.substr(0, digits), isHexadecimal));
        });
    });
}

/// The manager notes down what it has unpacked.
bool SwiftPackages::isUnchanged(const std::string& folder) {
    const auto state = reader.statusOf(packages + "/workspace-state.json");
    return reader.isTrueThroughout(
        folder, [&](const ArtifactContent& content) { return state && content.newest <= state->modified; });
}

bool SwiftPackages::isClone(const std::string& name, std::set<std::string>& known) {
    const auto origin = originIn(reader.textOf(fmt::format("{}/repositories/{}/config", packages, name)).value_or(""));
    const bool isOfCheckout =
        std::ranges::any_of(checkouts, [&](const auto& checkout) { return checkout.second == origin; });
    return isOfCheckout && isCloneOf(origin, name) && known.insert(origin).second &&
           isGitsOwn(fmt::format("{}/repositories/{}", packages, name));
}

bool SwiftPackages::holdsOnlyListedArtifacts() {
    const std::string folder = packages + "/artifacts";
    if (!reader.exists(folder)) return true;
    const auto content = reader.contentOf(folder);
    return content && content->files.empty() && content->links.empty() &&
           std::ranges::all_of(content->folders, [&](const std::string& package) {
               const auto targets = reader.contentOf(fmt::format("{}/{}", folder, package));
               return targets && targets->files.empty() && targets->links.empty() &&
                      std::ranges::all_of(targets->folders, [&](const std::string& target) {
                          return artifacts.contains(fmt::format("{}/{}", package, target));
                      });
           });
}

std::set<std::string> SwiftPackages::untouchedFiles() {
    std::set<std::string> files;
    for (const auto& [name, origin] : checkouts) {
        const std::string place = fmt::format("checkouts/{}/", name);
        const auto index = reader.textOf(fmt::format("{}/{}.git/index", packages, place));
        if (!index) continue;
        for (const GitIndex::Entry& entry : GitIndex::entriesOf(*index)) {
            const auto status = reader.statusOf(fmt::format("{}/{}{}", packages, place, entry.name));
            if (status && isAsGitLeftIt(entry, *status)) files.insert(place + entry.name);
        }
    }
    return files;
}

}  // namespace vostrel
