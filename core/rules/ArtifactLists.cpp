#include "rules/ArtifactLists.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <optional>
#include <span>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

#include "rules/NodePackages.h"
#include "rules/SwiftPackages.h"
#include "rules/WebBundle.h"

namespace vostrel {

namespace {

// Deeper than any tool nests.
constexpr std::size_t deepest = 100;

// What CocoaPods writes beside the pods.
constexpr std::array<std::string_view, 3> foldersOfPods{"Headers", "Pods.xcodeproj", "Target Support Files"};

constexpr std::array<std::string_view, 4> archiveExtensions{".jar", ".war", ".jar.original", ".war.original"};

/// An archive's name without its ending; nothing of another file.
std::optional<std::string_view> archiveName(std::string_view file) {
    const auto extension = std::ranges::find_if(archiveExtensions, [&](auto each) { return file.ends_with(each); });
    if (extension == archiveExtensions.end()) return std::nullopt;
    return file.substr(0, file.size() - extension->size());
}

/// Name and version of an archive, "app-1.0-sources.jar", whatever part of the build it holds.
std::pair<std::string, std::string> versionOf(std::string_view archive) {
    constexpr std::array<std::string_view, 6> parts{"-sources", "-javadoc",       "-plain",
                                                    "-all",     "-test-fixtures", "-tests"};
    for (const std::string_view part : parts) {
        if (!archive.ends_with(part)) continue;
        archive.remove_suffix(part.size());
        break;
    }
    const auto isDigit = [](char each) { return std::isdigit(static_cast<unsigned char>(each)) != 0; };
    constexpr std::string_view separators = "-_";
    for (auto at = archive.find_first_of(separators); at != std::string_view::npos;
         at = archive.find_first_of(separators, at + 1)) {
        auto version = archive.substr(at + 1);
        if (version.starts_with('v') || version.starts_with('V')) version.remove_prefix(1);
        if (!version.empty() && isDigit(version.front()))
            return {std::string(archive.substr(0, at)), std::string(version)};
    }
    return {std::string(archive), {}};
}

}  // namespace

std::set<std::string> ArtifactLists::listedFiles(const std::string& folder, ArtifactKind kind) {
    std::set<std::string> files;
    const std::string project = folder.substr(0, folder.rfind('/'));
    switch (kind) {
        case ArtifactKind::venv:
            return installedFiles(folder);
        case ArtifactKind::gradleBuild:
            for (const std::string part : {"main", "test"})
                addFilesBelow(fmt::format("{}/src/{}/resources", project, part), "resources/" + part, 0, files);
            return files;
        case ArtifactKind::target:
            addFilesBelow(project + "/src/main/resources", "classes", 0, files);
            addFilesBelow(project + "/src/test/resources", "test-classes", 0, files);
            return files;
        case ArtifactKind::swiftBuild:
        case ArtifactKind::xcodeDerivedData:
            for (const std::string& packages : foldersOfSwiftPackages(folder, kind)) {
                for (const auto& file : SwiftPackages(reader, fmt::format("{}/{}", folder, packages)).untouchedFiles())
                    files.insert(packages + file);
            }
            return files;
        default:
            return files;
    }
}

bool ArtifactLists::isListed(const std::set<std::string>& files, const std::string& file) {
    if (files.contains(file)) return true;
    // "a/__pycache__/b.cpython-311.opt-1.pyc", of "a/b.py"
    constexpr std::string_view cache = "__pycache__/";
    constexpr std::string_view version = ".cpython-";
    const auto name = file.rfind('/') + 1;
    const auto dot = file.find(version, name);
    if (dot == std::string::npos || !std::string_view(file).substr(0, name).ends_with(cache)) return false;
    std::string_view rest = std::string_view(file).substr(dot + version.size());
    rest.remove_prefix(std::min(rest.find_first_not_of("0123456789"), rest.size()));
    const bool isBytecode = rest == ".pyc" || rest == ".opt-1.pyc" || rest == ".opt-2.pyc";
    return isBytecode && files.contains(file.substr(0, name - cache.size()) + file.substr(name, dot - name) + ".py");
}

std::optional<Date> ArtifactLists::installed(const std::string& folder, ArtifactKind kind) {
    // What each manager writes when all packages are in place.
    constexpr std::array<std::string_view, 3> ofNode{".package-lock.json", ".yarn-integrity", ".modules.yaml"};
    constexpr std::array<std::string_view, 1> ofPods{"Manifest.lock"};
    std::span<const std::string_view> lists;
    if (kind == ArtifactKind::nodeModules) lists = ofNode;
    if (kind == ArtifactKind::pods) lists = ofPods;
    for (const std::string_view list : lists) {
        if (const auto status = reader.statusOf(fmt::format("{}/{}", folder, list))) return status->modified;
    }
    return std::nullopt;
}

bool ArtifactLists::isInPackage(const std::string& folder, ArtifactKind kind) {
    if (folder.empty()) return false;
    constexpr std::string_view store = ".pnpm/";
    if (kind == ArtifactKind::nodeModules)
        return !folder.starts_with('.') || (folder.starts_with(store) && folder.size() > store.size());
    return std::ranges::none_of(foldersOfPods, [&](auto own) { return folder.starts_with(std::string(own) + "/"); });
}

bool ArtifactLists::nameAll(const std::string& folder, ArtifactKind kind) {
    switch (kind) {
        case ArtifactKind::nodeModules:
            return NodePackages(reader).areAllListed(folder);
        case ArtifactKind::swiftBuild:
        case ArtifactKind::xcodeDerivedData:
            return std::ranges::all_of(foldersOfSwiftPackages(folder, kind), [&](const std::string& packages) {
                return SwiftPackages(reader, fmt::format("{}/{}", folder, packages)).areAllListed();
            });
        case ArtifactKind::pods:
            return holdsListedPods(folder);
        case ArtifactKind::pycache:
            return holdsCompiledSources(folder);
        case ArtifactKind::dist:
            return WebBundle(reader, folder).isWholeAndCanBeMadeAgain();
        case ArtifactKind::target:
            return holdsNamedArchives(folder) && holdsReportsOfTests(folder);
        case ArtifactKind::gradleBuild:
            return !reader.exists(folder + "/libs") || holdsOneVersion(folder + "/libs");
        default:
            return true;
    }
}

bool ArtifactLists::holdsListedPods(const std::string& folder) {
    const auto content = reader.contentOf(folder);
    // "- Name (1.0)", "- Name/Part (1.0)", or either in quotes.
    const std::string list = reader.textOf(folder + "/Manifest.lock").value_or("");
    const auto isListed = [&](const std::string& name) {
        const bool isUsedWhereItLies =
            list.contains("\n  " + name + ":\n    :path:") || list.contains("\n  \"" + name + "\":\n    :path:");
        if (isUsedWhereItLies) return false;
        return list.contains("- " + name + " (") || list.contains("- " + name + "/") ||
               list.contains("- \"" + name + " (") || list.contains("- \"" + name + "/");
    };
    return content && holdsOnlyLinks(folder + "/Headers", 0) &&
           std::ranges::all_of(content->folders, [&](const std::string& name) {
               return std::ranges::find(foldersOfPods, name) != foldersOfPods.end() || isListed(name);
           });
}

/// Whether no file lies in a folder, if it is there, or below it.
bool ArtifactLists::holdsOnlyLinks(const std::string& folder, std::size_t depth) {
    if (!reader.exists(folder)) return true;
    const auto content = reader.contentOf(folder);
    return content && content->files.empty() && depth <= deepest &&
           std::ranges::all_of(content->folders, [&](const std::string& name) {
               return holdsOnlyLinks(fmt::format("{}/{}", folder, name), depth + 1);
           });
}

/// Paths below the build folder of where Swift's package manager keeps what it fetched: empty, or ending in "/".
std::vector<std::string> ArtifactLists::foldersOfSwiftPackages(const std::string& folder, ArtifactKind kind) {
    if (kind == ArtifactKind::swiftBuild) return {""};
    std::vector<std::string> found{"SourcePackages/"};
    if (const auto content = reader.contentOf(folder)) {
        for (const std::string& project : content->folders)
            found.push_back(project + "/SourcePackages/");
    }
    std::erase_if(found, [&](const auto& packages) { return !reader.exists(fmt::format("{}/{}", folder, packages)); });
    return found;
}

bool ArtifactLists::holdsCompiledSources(const std::string& folder) {
    const auto content = reader.contentOf(folder);
    const std::string around = folder.substr(0, folder.rfind('/') + 1);
    return content && std::ranges::all_of(content->files, [&](const std::string& file) {
               return reader.isFile(around + file.substr(0, file.find(".cpython-")) + ".py");
           });
}

/// Whether all archives are of one name and version: another may be a release that cannot be built again, or no output
/// of this project.
bool ArtifactLists::holdsOneVersion(const std::string& archives) {
    const auto content = reader.contentOf(archives);
    if (!content) return false;
    std::set<std::pair<std::string, std::string>> versions;
    for (const std::string& file : content->files) {
        if (const auto name = archiveName(file)) versions.insert(versionOf(*name));
    }
    return versions.size() <= 1;
}

/// Whether all archives are called as Maven noted down when it made them, "artifact-version" or with a part's name
/// after it.
bool ArtifactLists::holdsNamedArchives(const std::string& folder) {
    const auto content = reader.contentOf(folder);
    if (!content) return false;
    std::string artifact;
    std::string version;
    std::istringstream lines(reader.textOf(folder + "/maven-archiver/pom.properties").value_or(""));
    for (std::string line; std::getline(lines, line);) {
        const auto end = line.find_last_not_of("\r\n ") + 1;
        if (line.starts_with("artifactId=")) artifact = line.substr(11, end - 11);
        if (line.starts_with("version=")) version = line.substr(8, end - 8);
    }
    const std::string noted = artifact + "-" + version;
    return std::ranges::all_of(content->files, [&](const std::string& file) {
        const auto name = archiveName(file);
        if (!name) return true;
        return !artifact.empty() && !version.empty() && (*name == noted || versionOf(*name) == versionOf(noted));
    });
}

/// Whether each text among the reports of tests ("a.ATest.txt", "a.ATest-output.txt") has the report of that test
/// beside it.
bool ArtifactLists::holdsReportsOfTests(const std::string& folder) {
    const std::string reports = folder + "/surefire-reports";
    if (!reader.exists(reports)) return true;
    const auto content = reader.contentOf(reports);
    return content && std::ranges::all_of(content->files, [&](const std::string& file) {
               if (!file.ends_with(".txt")) return true;
               auto test = file.substr(0, file.size() - std::string_view(".txt").size());
               if (test.ends_with("-output")) test.resize(test.size() - std::string_view("-output").size());
               return std::ranges::binary_search(content->files, "TEST-" + test + ".xml");
           });
}

/// Where the files of the packages lie that are installed in a Python environment, by their own lists.
std::set<std::string> ArtifactLists::installedFiles(const std::string& environment) {
    std::set<std::string> found;
    const auto versions = reader.contentOf(environment + "/lib");
    if (!versions) return found;
    for (const std::string& version : versions->folders) {
        const std::string packages = fmt::format("lib/{}/site-packages/", version);
        const auto content = reader.contentOf(fmt::format("{}/{}", environment, packages));
        if (!content) continue;
        for (const std::string& name : content->folders) {
            if (!name.ends_with(".dist-info")) continue;
            // "package/file.py,sha256=…,12"; outside of the packages "../../../bin/tool,…".
            std::istringstream lines(
                reader.textOf(fmt::format("{}/{}{}/RECORD", environment, packages, name)).value_or(""));
            for (std::string line; std::getline(lines, line);) {
                const auto file = std::filesystem::path(packages + line.substr(0, line.find(',')));
                found.insert(file.lexically_normal().native());
            }
        }
    }
    return found;
}

/// Adds the paths of all files in a folder and below it, as they are below another one.
void ArtifactLists::addFilesBelow(const std::string& folder, const std::string& as, std::size_t depth,
                                  std::set<std::string>& files) {
    if (depth > deepest || !reader.exists(folder)) return;
    const auto content = reader.contentOf(folder);
    if (!content) return;
    for (const std::string& file : content->files)
        files.insert(fmt::format("{}/{}", as, file));
    for (const std::string& inner : content->folders)
        addFilesBelow(fmt::format("{}/{}", folder, inner), fmt::format("{}/{}", as, inner), depth + 1, files);
}

}  // namespace vostrel
