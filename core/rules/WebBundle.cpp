#include "rules/WebBundle.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <ranges>
#include <string_view>
#include <utility>

#include "rules/JSONLookup.h"
#include "stores/JSONCoding.h"

namespace vostrel {

namespace {

// A bundle lies in a few folders.
constexpr std::size_t deepest = 5;

// What the bundlers write under these very names, without anything naming them.
constexpr std::array<std::string_view, 3> reports{"3rdpartylicenses.txt", "prerendered-routes.json", "manifest.json"};

// What they copy from the project as it is.
constexpr std::array<std::string_view, 2> copies{"vite.svg", "favicon.ico"};

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

bool WebBundle::isWholeAndCanBeMadeAgain() {
    if (!hasItsSources() || !addFilesBelow({}, 0) || pages.empty()) return false;
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
bool WebBundle::addFilesBelow(const std::string& folder, std::size_t depth) {
    const auto content = reader.contentOf(bundle + "/" + folder);
    if (!content || depth > deepest) return false;
    for (const std::string& name : content->files) {
        if (name.ends_with(".html")) {
            pages.push_back(folder + name);
        } else if (!isAmong(reports, name) && !isCopied(name) && !unnamed.emplace(name, folder + name).second) {
            return false;
        }
    }
    return content->links.empty() && std::ranges::all_of(content->folders, [&](const std::string& name) {
               return addFilesBelow(folder + name + "/", depth + 1);
           });
}

bool WebBundle::isCopied(const std::string& name) {
    return isAmong(copies, name) &&
           (reader.isFile(project + "/public/" + name) || reader.isFile(project + "/src/" + name));
}

void WebBundle::reachFromPages() {
    std::vector<std::string> reached = pages;
    while (!reached.empty() && !unnamed.empty() && !reader.mustStop()) {
        const std::string text = reader.textOf(bundle + "/" + reached.back()).value_or("");
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
