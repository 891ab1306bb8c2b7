#include "rules/WebBundle.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <chrono>
#include <ranges>
#include <string_view>
#include <utility>

#include "rules/JSONLookup.h"
#include "stores/JSONCoding.h"

namespace vostrel {

namespace {

// What the bundlers write under these very names, without anything naming them.
constexpr std::array<std::string_view, 3> reports{"3rdpartylicenses.txt", "prerendered-routes.json", "manifest.json"};

/// From a bundle's first file to its last; the bundler has its whole content in memory before.
constexpr std::chrono::minutes longestWriting{1};

template <class List>
bool isAmong(const List& names, std::string_view name) {
    return std::ranges::find(names, name) != names.end();
}

bool isOfFileName(char each) {
    return std::isalnum(static_cast<unsigned char>(each)) != 0 || each == '.' || each == '-' || each == '_';
}

}  // namespace

WebBundle::WebBundle(ArtifactReader& from, std::string folder)
    : reader(from), bundle(std::move(folder)), project(bundle.substr(0, bundle.rfind('/'))) {}

std::vector<std::string> WebBundle::foldersOfCopies() {
    std::vector<std::string> folders{""};
    if (const auto content = reader.contentOf(bundle)) {
        for (const std::string& name : content->folders)  // of an Angular project
            folders.push_back(name + "/browser/");
    }
    return folders;
}

bool WebBundle::isWholeAndCanBeMadeAgain(const std::set<std::string>& copies) {
    if (!hasItsSources() || !addFiles(copies) || pages.empty() || !wasWrittenInOneGo()) return false;
    reachFromPages();
    return unnamed.empty();
}

/// Vite's page, Astro's pages, or an Angular project for every folder in the bundle.
bool WebBundle::hasItsSources() {
    if (reader.exists(bundle + "/assets")) return reader.isFile(project + "/index.html");
    if (reader.exists(bundle + "/_astro")) return reader.exists(project + "/src/pages");
    const auto content = reader.contentOf(bundle);
    const auto workspace = JSONCoding::decoder().decode(reader.textOf(project + "/angular.json").value_or(""));
    if (!content || !workspace) return false;
    const auto projects = membersIn(&*workspace, "projects");
    return std::ranges::all_of(content->folders,
                               [&](const auto& name) { return isAmong(projects | std::views::keys, name); });
}

/// Whether all of them could be listed.
bool WebBundle::addFiles(const std::set<std::string>& copies) {
    return reader.isTrueThroughout(bundle, [&](const ArtifactContent& content) {
        for (const std::string& name : content.files) {
            const std::string path = fmt::format("{}/{}", content.path, name);
            if (copies.contains(path.substr(bundle.size() + 1))) continue;
            written.push_back(path);
            if (name.ends_with(".html")) {
                pages.push_back(path);
            } else if (!isAmong(reports, name) && !unnamed.emplace(name, path).second) {
                return false;
            }
        }
        return content.links.empty();
    });
}

/// A file that somebody put there or changed by hand is of another time.
bool WebBundle::wasWrittenInOneGo() {
    Date first = Date::distantFuture();
    Date last = Date::distantPast();
    for (const std::string& file : written) {
        const auto status = reader.statusOf(file);
        if (!status) return false;
        first = std::min(first, status->modified);
        last = std::max(last, status->modified);
    }
    return last - first <= longestWriting;
}

void WebBundle::reachFromPages() {
    std::vector<std::string> reached = pages;
    while (!reached.empty() && !unnamed.empty() && !reader.mustStop()) {
        const std::string text = reader.textOf(reached.back()).value_or("");
        reached.pop_back();
        for (auto begin = text.begin(); begin != text.end();) {
            begin = std::find_if(begin, text.end(), isOfFileName);
            const auto end = std::find_if_not(begin, text.end(), isOfFileName);
            const std::string name(begin, end);
            begin = end;
            const auto known = unnamed.find(name);
            if (known == unnamed.end()) continue;
            reached.push_back(known->second);
            unnamed.erase(known);
            unnamed.erase(name + ".map");  // which a bundler may be told not to name
        }
    }
}

}  // namespace vostrel
