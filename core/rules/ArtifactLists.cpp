#include "rules/ArtifactLists.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <chrono>
#include <optional>
#include <span>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

#include "rules/NodePackages.h"
#include "rules/PythonEnvironment.h"
#include "rules/SwiftPackages.h"
#include "rules/WebBundle.h"

namespace vostrel {

namespace {

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
    switch (kind) {
        case ArtifactKind::venv:
            return PythonEnvironment(reader, folder).installedFiles();
        case ArtifactKind::gradleBuild:
            for (const std::string part : {"main", "test"})
                addCopies(fmt::format("src/{}/resources", part), folder, fmt::format("resources/{}/", part), files);
            return files;
        case ArtifactKind::target:
            addCopies("src/main/resources", folder, "classes/", files);
            addCopies("src/test/resources", folder, "test-classes/", files);
            return files;
        case ArtifactKind::dist:
            for (const std::string& bundle : WebBundle(reader, folder).foldersOfCopies())
                addCopies("public", folder, bundle, files);
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

std::set<std::string> ArtifactLists::namesOfCopies(const std::string& folder, ArtifactKind kind) {
    std::set<std::string> names;
    if (kind != ArtifactKind::dist) return names;
    if (const auto originals = reader.contentOf(folder.substr(0, folder.rfind('/')) + "/public")) {
        names.insert(originals->files.begin(), originals->files.end());
        names.insert(originals->folders.begin(), originals->folders.end());
    }
    return names;
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

std::optional<ArtifactLists::Installation> ArtifactLists::installation(const std::string& folder, ArtifactKind kind) {
    // What each tool writes when all else is in place.
    constexpr std::array<std::string_view, 3> ofNode{".package-lock.json", ".yarn-integrity", ".modules.yaml"};
    constexpr std::array<std::string_view, 1> ofNext{"trace"};
    constexpr std::array<std::string_view, 1> ofPods{"Manifest.lock"};
    std::span<const std::string_view> lists;
    if (kind == ArtifactKind::nodeModules) lists = ofNode;
    if (kind == ArtifactKind::nextBuild && reader.isFile(folder + "/BUILD_ID")) lists = ofNext;
    if (kind == ArtifactKind::pods) lists = ofPods;
    for (const std::string_view list : lists) {
        if (const auto status = reader.statusOf(fmt::format("{}/{}", folder, list)))
            return Installation{status->modified, status->changed};
    }
    return std::nullopt;
}

/// A copy of a whole tree keeps the dates of content and gets new ones of arrival, the list like the rest: then these
/// tell nothing.
bool ArtifactLists::Installation::isOlderThan(const ArtifactContent& content) const {
    constexpr std::chrono::minutes toBeWritten{1};
    const bool isWhereItWasMade = arrived - modified <= toBeWritten && modified - arrived <= toBeWritten;
    return content.newest > modified || (isWhereItWasMade && content.changed > arrived);
}

bool ArtifactLists::staysAsInstalled(std::string_view folder, ArtifactKind kind) {
    const auto liesIn = [&](std::string_view around) {
        return folder.starts_with(around) && folder.substr(around.size()).starts_with('/');
    };
    const auto liesBelow = [&](std::string_view around) { return liesIn(around) && folder.size() > around.size() + 1; };
    switch (kind) {
        case ArtifactKind::nodeModules:
            return liesBelow(".pnpm") || (!folder.empty() && !folder.starts_with('.'));
        case ArtifactKind::nextBuild:  // the server keeps the pages that it has made in a cache
            return liesIn("static") || liesIn("types") || (liesBelow("server") && !liesIn("server/route-cache"));
        case ArtifactKind::pods:
            return !folder.empty() && std::ranges::none_of(foldersOfPods, liesIn);
        default:
            return false;
    }
}

bool ArtifactLists::nameAll(const std::string& folder, ArtifactKind kind, const std::set<std::string>& listed) {
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
            return WebBundle(reader, folder).isWholeAndCanBeMadeAgain(listed);
        case ArtifactKind::target:
            return holdsNamedArchives(folder) && holdsReportsOfTests(folder);
        case ArtifactKind::gradleBuild:
            return !reader.exists(folder + "/libs") || holdsOneVersion(folder + "/libs");
        case ArtifactKind::pytestCache:
            return reader.beginsWith(folder + "/README.md", "# pytest cache directory #");
        case ArtifactKind::venv:
            return PythonEnvironment(reader, folder).hasItsOwnScripts();
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
    const auto holdsNoFiles = [](const ArtifactContent& headers) { return headers.files.empty(); };
    return content && reader.isTrueThroughout(folder + "/Headers", holdsNoFiles) &&
           std::ranges::all_of(content->folders, [&](const std::string& name) {
               return std::ranges::find(foldersOfPods, name) != foldersOfPods.end() || isListed(name);
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

/// Adds the files in a folder inside the build folder that are copies of those in one of the project's. `copies` is
/// empty or ends with "/".
void ArtifactLists::addCopies(const std::string& originals, const std::string& folder, const std::string& copies,
                              std::set<std::string>& files) {
    const std::string from = fmt::format("{}/{}", folder.substr(0, folder.rfind('/')), originals);
    (void)reader.isTrueThroughout(from, [&](const ArtifactContent& content) {
        for (const std::string& name : content.files) {
            const std::string original = fmt::format("{}/{}", content.path, name);
            const std::string copy = copies + original.substr(from.size() + 1);
            if (reader.areAlike(original, fmt::format("{}/{}", folder, copy))) files.insert(copy);
        }
        return true;
    });
}

}  // namespace vostrel
