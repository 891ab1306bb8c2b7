#include "rules/ArtifactFacts.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <utility>

#include "rules/ArtifactFiles.h"
#include "rules/PersonalNames.h"

namespace vostrel {

namespace {

using Marker = ArtifactMarker;
using Signature = ArtifactSignature;

using namespace artifacts;

std::vector<Signature> foldersOfSystems() {
    std::vector<Signature> folders;
    for (const std::string& name : ArtifactLayout::systems())
        folders.push_back(Signature::folderMatching(name));
    return folders;
}

std::vector<Marker> files(const Names& names) {
    std::vector<Marker> markers;
    for (const std::string& name : names)
        markers.push_back(Marker::file(name));
    return markers;
}

std::vector<Marker> pythonFiles() {
    std::vector<Marker> markers = files(pythonProjectFiles());
    markers.insert(markers.begin(), Marker::fileMatching("*.py"));
    return markers;
}

const Names gradleScripts{"build.gradle", "build.gradle.kts", "settings.gradle", "settings.gradle.kts"};

struct Row {
    ArtifactKind kind;
    int semanticsRevision = 1;
    const char* title;
    std::vector<Marker> markers;
    std::vector<ToolSignature> signatures;
    Names neverHolds = belongings;
};

// Each tool's row: its name, a further file beside, what its folder shows (any of them), and where its files lie.
std::vector<Row> rows() {
    return {
        // Every package must stand in the manager's own list as well.
        {.kind = ArtifactKind::nodeModules,
         .semanticsRevision = 4,
         .title = "Node packages",
         .markers = files({"package.json"}),
         .signatures =
             {{"npm", {}, {Signature::file(".package-lock.json")}, joined({nodePackages(), {".package-lock.json"}})},
              {"Yarn",
               {},
               {Signature::file(".yarn-integrity"), Signature::file(".yarn-state.yml")},
               joined({nodePackages(), {".yarn-integrity", ".yarn-state.yml", ".package-map.json"}})},
              {"pnpm",
               {},
               {Signature::file(".modules.yaml")},
               joined({nodePackages(),
                       {".modules.yaml", ".pnpm-workspace-state.json", ".pnpm-workspace-state-v1.json",
                        ".pnpm/lock.yaml", ".pnpm/*/**"}})}},
         .neverHolds = documents},

        {.kind = ArtifactKind::nextBuild,
         .semanticsRevision = 4,
         .title = "Next.js build",
         .markers = files({"package.json"}),
         .signatures = {{"Next.js",
                         {},
                         {Signature::allOf({Signature::file("BUILD_ID"), Signature::file("build-manifest.json")}),
                          Signature::allOf({Signature::file("build-manifest.json"), Signature::folder("server"),
                                            Signature::folder("static")}),
                          Signature::inside(
                              "dev", Signature::allOf({Signature::file("build-manifest.json"),
                                                       Signature::folder("server"), Signature::folder("static")}))},
                         nextFiles()}},
         .neverHolds = joined({belongings, writings})},

        {.kind = ArtifactKind::nuxtBuild,
         .semanticsRevision = 3,
         .title = "Nuxt build",
         .markers = {Marker::fileMatching("nuxt.config.*")},
         .signatures = {{"Nuxt",
                         {},
                         {Signature::allOf({Signature::file("nuxt.d.ts"), Signature::file("tsconfig.json")}),
                          Signature::allOf({Signature::file("App.js"), Signature::file("client.js"),
                                            Signature::file("router.js"), Signature::file("server.js")})},
                         nuxtFiles()}},
         .neverHolds = joined({belongings, writings})},

        // Its config.json and the like are settings; a folder with one stays. Logs alone are no proof.
        {.kind = ArtifactKind::turboCache,
         .semanticsRevision = 2,
         .title = "Turborepo cache",
         .markers = files({"turbo.json", "package.json"}),
         .signatures = {{"Turborepo",
                         {},
                         {Signature::inside("cache", Signature::fileMatching(digits(16) + ".tar.zst"))},
                         {"turbo-build.log", "turbo-dev.log", "turbo-lint.log", "turbo-test.log",
                          "cache/" + digits(16) + ".tar.zst", "cache/" + digits(16) + "-meta.json",
                          "cache/" + digits(16) + "-manifest.json", "cookies/WORD.cookie",
                          "daemon/" + digits(16) + "-turbo.log.*"}}},
         .neverHolds = documents},

        {.kind = ArtifactKind::parcelCache,
         .title = "Parcel cache",
         .markers = files({"package.json"}),
         .signatures = {{"Parcel",
                         {},
                         {Signature::allOf({Signature::file("data.mdb"), Signature::file("lock.mdb")})},
                         {"data.mdb", "lock.mdb", "snapshot-" + digits(16) + ".txt", digits(16),
                          digits(16) + "-AssetGraph-[0-9]", digits(16) + "-BundleGraph-[0-9]",
                          digits(16) + "-RequestGraph-[0-9]", digits(16) + "-AssetGraph", digits(16) + "-BundleGraph",
                          digits(16) + "-RequestGraph"}}}},

        // None of these is sure to empty the folder before it fills it, so only what lies in exactly the layout of a
        // bundle is one, beside copies of the project's own public files.
        {.kind = ArtifactKind::dist,
         .semanticsRevision = 4,
         .title = "Web bundle",
         .markers = {Marker::fileMatching("vite.config.*"), Marker::file("angular.json"),
                     Marker::fileMatching("astro.config.*")},
         .signatures =
             {{"Vite",
               Marker::fileMatching("vite.config.*"),
               {Signature::allOf({Signature::file("index.html"),
                                  Signature::inside("assets", Signature::fileMatching("index-????????.js"))})},
               joined({{"index.html", ".vite/manifest.json"}, below({"assets"}, hashedBundles())})},
              {"Angular",
               Marker::file("angular.json"),
               {Signature::inside(
                   "*", Signature::allOf({Signature::file("3rdpartylicenses.txt"),
                                          Signature::inside("browser", Signature::fileMatching("main-????????.js"))}))},
               joined({below({"*"}, {"3rdpartylicenses.txt", "prerendered-routes.json", "browser/index.html",
                                     "browser/index.csr.html"}),
                       below({"*/browser"}, hashedBundles())})},
              {"Astro",
               Marker::fileMatching("astro.config.*"),
               {Signature::allOf({Signature::file("index.html"),
                                  Signature::inside("_astro",
                                                    Signature::anyOf({Signature::fileMatching("*.????????.css"),
                                                                      Signature::fileMatching("*.????????.js")}))})},
               {"index.html", "404.html", "_astro/*.HASH.css", "_astro/*.HASH.js"}}},
         .neverHolds = documents},

        {.kind = ArtifactKind::target,
         .semanticsRevision = 4,
         .title = "Cargo or Maven build",
         .markers = files({"Cargo.toml", "pom.xml"}),
         .signatures = {{"Cargo",
                         Marker::file("Cargo.toml"),
                         {Signature::allOf({Signature::file("CACHEDIR.TAG"), Signature::file(".rustc_info.json")})},
                         cargoFiles(),
                         joined({writings, pictures, byHand, {"*.swift", "*.java", "*.kt", "*.ts", "*.plist"}})},
                        {"Maven",
                         Marker::file("pom.xml"),
                         {Signature::inside("maven-archiver", Signature::file("pom.properties")),
                          Signature::inside("maven-status", Signature::folder("maven-compiler-plugin"))},
                         mavenFiles}},
         .neverHolds = joined({belongings, {"Cargo.toml", "pom.xml"}})},

        {.kind = ArtifactKind::swiftBuild,
         .semanticsRevision = 3,
         .title = "Swift package build",
         .markers = files({"Package.swift"}),
         .signatures = {{"Swift Package Manager",
                         {},
                         {Signature::allOf(
                             {Signature::file("workspace-state.json"),
                              Signature::anyOf({Signature::folder("checkouts"), Signature::folder("repositories"),
                                                Signature::anyOf(foldersOfSystems())})})},
                         swiftFiles(),
                         joined({belongings, writings, sources, pictures, byHand})}},
         .neverHolds = documents},

        // Every pod must stand in the manifest as well.
        {.kind = ArtifactKind::pods,
         .semanticsRevision = 4,
         .title = "CocoaPods pods",
         .markers = files({"Podfile"}),
         .signatures = {{"CocoaPods",
                         Marker::file("Podfile.lock"),
                         {Signature::allOf({Signature::file("Manifest.lock"), Signature::folder("Pods.xcodeproj"),
                                            Signature::folder("Target Support Files")})},
                         podsFiles()}},
         .neverHolds = joined({documents, secrets})},

        {.kind = ArtifactKind::gradleBuild,
         .semanticsRevision = 4,
         .title = "Gradle build",
         .markers = files(gradleScripts),
         .signatures = {{"Gradle",
                         {},
                         {Signature::inside(
                              "tmp", Signature::inside("compile*", Signature::file("previous-compilation-data.bin"))),
                          Signature::inside("tmp", Signature::inside("jar", Signature::file("MANIFEST.MF"))),
                          Signature::inside("kotlin", Signature::inside("compile*", Signature::folder("local-state"))),
                          Signature::inside("outputs", Signature::inside("logs", Signature::fileMatching(
                                                                                     "manifest-merger-*-report.txt")))},
                         gradleFiles(),
                         joined({writings, pictures, sources, byHand})}},
         .neverHolds = joined({belongings, gradleScripts})},

        // Settings that lie in such a folder (gradle.properties, config.properties) make it stay.
        {.kind = ArtifactKind::gradleCache,
         .title = "Gradle project cache",
         .markers = files(gradleScripts),
         .signatures = {{"Gradle",
                         {},
                         {Signature::inside("buildOutputCleanup", Signature::file("cache.properties")),
                          Signature::inside("[0-9].*", Signature::allOf({Signature::folder("fileHashes"),
                                                                         Signature::file("gc.properties")}))},
                         gradleCacheFiles}}},

        // The source of each must lie beside the folder as well.
        {.kind = ArtifactKind::pycache,
         .title = "Python bytecode",
         .markers = {Marker::fileMatching("*.py")},
         .signatures = {{"Python",
                         {},
                         {Signature::onlyFilesMatching("*.cpython-3*.pyc")},
                         {"*.cpython-3[0-9].pyc", "*.cpython-3[0-9][0-9].pyc", "*.cpython-3[0-9].opt-[12].pyc",
                          "*.cpython-3[0-9][0-9].opt-[12].pyc", "*.cpython-3[0-9]-pytest-[0-9].[0-9].[0-9].pyc",
                          "*.cpython-3[0-9][0-9]-pytest-[0-9].[0-9].[0-9].pyc"}}}},

        {.kind = ArtifactKind::pytestCache,
         .semanticsRevision = 2,
         .title = "pytest cache",
         .markers = pythonFiles(),
         .signatures = {{"pytest",
                         {},
                         {Signature::allOf({Signature::file("CACHEDIR.TAG"), Signature::file("README.md"),
                                            Signature::inside("v", Signature::folder("cache"))})},
                         {"CACHEDIR.TAG", "README.md", ".gitignore", "v/cache/lastfailed", "v/cache/nodeids",
                          "v/cache/stepwise"}}}},

        // Everything else in it must stand in the list of an installed package.
        {.kind = ArtifactKind::venv,
         .semanticsRevision = 3,
         .title = "Python environment",
         .markers = files(pythonProjectFiles()),
         .signatures = {{"Python",
                         {},
                         {Signature::allOf({Signature::file("pyvenv.cfg"),
                                            Signature::inside("bin", Signature::fileMatching("activate*")),
                                            Signature::inside("lib", Signature::folderMatching("python*"))})},
                         environmentFiles()}},
         .neverHolds = documents},

        {.kind = ArtifactKind::xcodeDerivedData,
         .semanticsRevision = 3,
         .title = "Xcode DerivedData",
         .markers = {Marker::fileMatching("*.xcodeproj"), Marker::fileMatching("*.xcworkspace"),
                     Marker::file("Package.swift")},
         .signatures = {{"Xcode",
                         {},
                         {Signature::allOf(
                              {Signature::file("info.plist"), Signature::folder("Build"), Signature::folder("Logs")}),
                          Signature::inside("*-" + repeated("[a-z]", 28), Signature::file("info.plist"))},
                         derivedDataFiles(),
                         joined({belongings, writings, sources, pictures, byHand})}},
         .neverHolds = documents},
    };
}

/// Every marker of the table once, each with its bit.
class KnownMarkers {
public:
    ArtifactMarkers add(const Marker& marker) {
        const auto known = std::ranges::find(markers, marker);
        const auto bit = static_cast<std::size_t>(known - markers.begin());
        if (known == markers.end()) markers.push_back(marker);
        assert(bit < ArtifactMarkers().size());
        return ArtifactMarkers().set(bit);
    }

    [[nodiscard]] ArtifactMarkers matching(std::string_view fileName) const {
        ArtifactMarkers found;
        for (std::size_t bit = 0; bit < markers.size(); ++bit)
            found.set(bit, markers[bit].matches(fileName));
        return found;
    }

private:
    std::vector<Marker> markers;
};

struct Table {
    std::vector<ArtifactFacts> facts;
    KnownMarkers markers;
    ArtifactMarkers pythonProject;

    Table() {
        for (Row& row : rows())
            facts.push_back(made(std::move(row)));
        for (const Marker& marker : files(pythonProjectFiles()))
            pythonProject |= markers.add(marker);
    }

    ArtifactFacts made(Row row) {
        ArtifactFacts made;
        made.kind = row.kind;
        made.semanticsRevision = row.semanticsRevision;
        made.title = row.title;
        made.neverHolds = std::move(row.neverHolds);
        made.persons = Glob::Patterns::compile(made.neverHolds).value_or(Glob::Patterns());
        for (const Marker& marker : row.markers)
            made.markerBits |= markers.add(marker);
        for (const ToolSignature& signature : row.signatures) {
            made.tools.push_back({signature.marker ? markers.add(*signature.marker) : ArtifactMarkers(),
                                  ArtifactLayout::compile(signature.own, signature.notInRuns)});
        }
        made.markers = std::move(row.markers);
        made.signatures = std::move(row.signatures);
        return made;
    }
};

const Table& table() {
    static const Table made;
    return made;
}

std::string listed(const Names& names) {
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

}  // namespace

std::string ArtifactFacts::toolName() const {
    return signatures.size() == 1 ? signatures.front().tool : "a tool";
}

std::string ArtifactFacts::definition() const {
    std::string text = fmt::format("revision {}; {}", semanticsRevision, namesOf(kind).folderName);
    for (const Marker& marker : markers)
        text += "; " + marker.location();
    for (const ToolSignature& signature : signatures) {
        text += "; " + signature.tool;
        if (signature.marker) text += " " + signature.marker->location();
        text += ": " + Signature::anyOf(signature.anyOf).description();
        text += ", files " + listed(signature.own);
        if (!signature.notInRuns.empty()) text += ", only where named " + listed(signature.notInRuns);
        if (std::ranges::any_of(signature.own, [](const auto& line) { return line.starts_with("SYSTEM/"); }))
            text += ", systems " + listed(ArtifactLayout::systems());
    }
    return text + "; never " + listed(neverHolds);
}

const ArtifactFacts& factsOf(ArtifactKind kind) {
    return table().facts.at(static_cast<std::size_t>(kind));
}

std::optional<ArtifactKind> kindOfFolder(std::string_view name) {
    const auto* known = std::ranges::find(artifactKinds, name, &ArtifactKindNames::folderName);
    if (known == artifactKinds.end()) return std::nullopt;
    return known->kind;
}

ArtifactMarkers markersOf(std::string_view fileName) {
    return table().markers.matching(fileName);
}

const std::vector<std::string>& pythonProjectFiles() {
    static const Names names{"pyproject.toml", "setup.py",    "setup.cfg", "requirements.txt",
                             "Pipfile",        "poetry.lock", "uv.lock",   "tox.ini"};
    return names;
}

ArtifactMarkers pythonProjectMarkers() {
    return table().pythonProject;
}

}  // namespace vostrel
