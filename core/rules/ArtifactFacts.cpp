#include "rules/ArtifactFacts.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <utility>

namespace vostrel {

namespace {

using Marker = ArtifactMarker;
using Signature = ArtifactSignature;
using Names = std::vector<std::string>;

const Names any{"*"};
const Names none{};

/// The systems that Cargo and Swift build for: "x86_64-unknown-linux-gnu".
const Names triples{"aarch64-*",  "arm64-*",  "arm64e-*", "arm64_32-*", "armv*-*",  "i?86-*",   "loongarch64-*",
                    "powerpc*-*", "riscv*-*", "s390x-*",  "thumbv*-*",  "wasm32-*", "wasm64-*", "x86_64-*"};

Names triplesAnd(std::initializer_list<std::string> names) {
    Names all = triples;
    all.insert(all.end(), names);
    return all;
}

std::vector<Signature> triplesFolders() {
    std::vector<Signature> folders;
    for (const std::string& triple : triples)
        folders.push_back(Signature::folderMatching(triple));
    return folders;
}

/// A pattern of so many hexadecimal digits.
std::string digits(int count) {
    std::string pattern;
    while (count-- > 0)
        pattern += "[0-9a-f]";
    return pattern;
}

const Names repositories{".git", ".hg", ".svn", ".bzr", ".jj", "_darcs", ".fslckout"};

Names repositoriesAnd(std::initializer_list<std::string> names) {
    Names all = repositories;
    all.insert(all.end(), names);
    return all;
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
    const char* title;
    std::vector<Marker> markers;
    std::vector<ToolSignature> signatures;
    Names neverHolds = repositories;
};

// Each tool's row: its name, a further file beside, what its folder shows (any of them), and the names of the files and
// of the folders that it puts directly inside.
std::vector<Row> rows() {
    return {
        {.kind = ArtifactKind::nodeModules,
         .title = "Node packages",
         .markers = files({"package.json"}),
         .signatures =
             {{"npm", {}, {Signature::file(".package-lock.json")}, {".*"}, any},
              {"Yarn", {}, {Signature::file(".yarn-integrity"), Signature::file(".yarn-state.yml")}, {".*"}, any},
              {"pnpm", {}, {Signature::file(".modules.yaml")}, {".*"}, any},
              {"a package manager", {}, {Signature::folderOfLinks(".bin")}, {".*"}, any}}},

        {.kind = ArtifactKind::nextBuild,
         .title = "Next.js build",
         .markers = files({"package.json"}),
         .signatures = {{"Next.js",
                         {},
                         {Signature::allOf({Signature::file("BUILD_ID"), Signature::file("build-manifest.json")}),
                          Signature::allOf({Signature::file("build-manifest.json"), Signature::folder("server"),
                                            Signature::folder("static")})},
                         {"BUILD_ID", "*.json", "*.js", "*.js.map", "trace", "trace-build", "turbopack", "lock"},
                         any}},
         .neverHolds = repositoriesAnd({"*.tsx", "*.jsx"})},

        {.kind = ArtifactKind::nuxtBuild,
         .title = "Nuxt build",
         .markers = {Marker::fileMatching("nuxt.config.*")},
         .signatures = {{"Nuxt",
                         {},
                         {Signature::allOf({Signature::file("nuxt.d.ts"), Signature::file("tsconfig.json")}),
                          Signature::allOf({Signature::file("App.js"), Signature::file("client.js"),
                                            Signature::file("router.js"), Signature::file("server.js")})},
                         {"*.d.ts", "*.json", "*.js", "*.cjs", "*.mjs", "*.css", "*.html"},
                         any}}},

        // Its config.json and the like are settings; a folder with one stays.
        {.kind = ArtifactKind::turboCache,
         .title = "Turborepo cache",
         .markers = files({"turbo.json", "package.json"}),
         .signatures = {{"Turborepo",
                         {},
                         {Signature::inside("cache", Signature::fileMatching(digits(16) + ".tar.zst")),
                          Signature::onlyFilesMatching("turbo-*.log")},
                         {"turbo-*.log"},
                         {"cache", "cookies", "daemon", "runs"}}}},

        {.kind = ArtifactKind::parcelCache,
         .title = "Parcel cache",
         .markers = files({"package.json"}),
         .signatures = {{"Parcel",
                         {},
                         {Signature::allOf({Signature::file("data.mdb"), Signature::file("lock.mdb")})},
                         {"data.mdb", "lock.mdb", "snapshot-*.txt", "*AssetGraph*", "*BundleGraph*", "*RequestGraph*",
                          digits(16), digits(16) + "-*"},
                         {digits(2)}}}},

        // Only of tools that empty the folder themselves before they fill it. Others leave nothing that is certain.
        {.kind = ArtifactKind::dist,
         .title = "Web bundle",
         .markers = {Marker::fileMatching("vite.config.*"), Marker::file("angular.json"),
                     Marker::fileMatching("astro.config.*")},
         .signatures = {{"Vite",
                         Marker::fileMatching("vite.config.*"),
                         {Signature::inside(".vite", Signature::file("manifest.json")),
                          Signature::allOf(
                              {Signature::file("index.html"),
                               Signature::inside("assets",
                                                 Signature::allOf({Signature::fileMatching("index-????????.js"),
                                                                   Signature::onlyFilesMatching("*-????????.*")}))})},
                         any,
                         any},
                        {"Angular",
                         Marker::file("angular.json"),
                         {Signature::file("3rdpartylicenses.txt"),
                          Signature::inside("*", Signature::file("3rdpartylicenses.txt"))},
                         any,
                         any},
                        {"Astro",
                         Marker::fileMatching("astro.config.*"),
                         {Signature::inside("_astro", Signature::onlyFilesMatching("*.????????.*"))},
                         any,
                         any}},
         .neverHolds = repositoriesAnd({"package.json", "*.ts", "*.tsx", "*.jsx", "*.vue", "*.svelte", "*.astro",
                                        "*.scss", "*.sass", "*.less", "*.psd", "*.sketch", "*.fig", "*.ai"})},

        {.kind = ArtifactKind::target,
         .title = "Cargo or Maven build",
         .markers = files({"Cargo.toml", "pom.xml"}),
         .signatures = {{"Cargo",
                         Marker::file("Cargo.toml"),
                         {Signature::allOf({Signature::file("CACHEDIR.TAG"), Signature::file(".rustc_info.json")})},
                         {"CACHEDIR.TAG", ".rustc_info.json", ".rustdoc_fingerprint.json", ".cargo-lock",
                          ".future-incompat-report.json"},
                         triplesAnd({"debug", "release", "build", "doc", "tmp", "package", "criterion", "nextest",
                                     "flycheck*", "rust-analyzer"})},
                        {"Maven",
                         Marker::file("pom.xml"),
                         {Signature::inside("maven-archiver", Signature::file("pom.properties")),
                          Signature::inside("maven-status", Signature::folder("maven-compiler-plugin"))},
                         {"*.jar", "*.war", "*.ear", "*.jar.original", "*.war.original", "jacoco.exec"},
                         {"classes", "test-classes", "generated-sources", "generated-test-sources", "maven-archiver",
                          "maven-status", "surefire-reports", "surefire", "failsafe-reports", "site", "apidocs",
                          "reports", "antrun", "javadoc-bundle-options"}}},
         .neverHolds = repositoriesAnd({"Cargo.toml", "pom.xml"})},

        // It holds clones of what it depends on, so a repository inside tells nothing.
        {.kind = ArtifactKind::swiftBuild,
         .title = "Swift package build",
         .markers = files({"Package.swift"}),
         .signatures = {{"Swift Package Manager",
                         {},
                         {Signature::allOf(
                             {Signature::file("workspace-state.json"),
                              Signature::anyOf({Signature::folder("checkouts"), Signature::folder("repositories"),
                                                Signature::anyOf(triplesFolders())})})},
                         {"workspace-state.json", ".lock", "debug.yaml", "release.yaml", "plugin-tools.yaml",
                          "build.db*", "manifest.db*"},
                         triplesAnd({"artifacts", "checkouts", "index-build", "plugins", "prebuilts", "repositories",
                                     "debug", "release"})}},
         .neverHolds = none},

        {.kind = ArtifactKind::pods,
         .title = "CocoaPods pods",
         .markers = files({"Podfile"}),
         .signatures = {{"CocoaPods",
                         Marker::file("Podfile.lock"),
                         {Signature::allOf({Signature::file("Manifest.lock"), Signature::folder("Pods.xcodeproj"),
                                            Signature::folder("Target Support Files")})},
                         {"Manifest.lock"},
                         any}}},

        {.kind = ArtifactKind::gradleBuild,
         .title = "Gradle build",
         .markers = files(gradleScripts),
         .signatures = {{"Gradle",
                         {},
                         {Signature::inside(
                              "tmp", Signature::inside("compile*", Signature::file("previous-compilation-data.bin"))),
                          Signature::inside("tmp", Signature::inside("jar", Signature::file("MANIFEST.MF"))),
                          Signature::inside("kotlin", Signature::inside("compile*", Signature::folder("local-state"))),
                          Signature::inside("reports",
                                            Signature::inside("problems", Signature::file("problems-report.html"))),
                          Signature::inside("outputs", Signature::inside("logs", Signature::fileMatching(
                                                                                     "manifest-merger-*-report.txt")))},
                         none,
                         {"classes", "distributions", "docs", "generated", "install", "intermediates", "jacoco",
                          "kotlin", "kspCaches", "libs", "outputs", "publications", "reports", "resources",
                          "scripts", "snapshot", "test-results", "tmp", "extracted-include-protos"}}},
         .neverHolds = repositoriesAnd({"build.gradle", "build.gradle.kts", "settings.gradle", "settings.gradle.kts"})},

        // Settings that lie in such a folder (gradle.properties, config.properties) make it stay.
        {.kind = ArtifactKind::gradleCache,
         .title = "Gradle project cache",
         .markers = files(gradleScripts),
         .signatures = {{"Gradle",
                         {},
                         {Signature::inside("buildOutputCleanup", Signature::file("cache.properties")),
                          Signature::inside("[0-9]*", Signature::allOf({Signature::folder("fileHashes"),
                                                                        Signature::file("gc.properties")}))},
                         {"file-system.probe"},
                         {"[0-9]*", "buildOutputCleanup", "checksums", "configuration-cache", "expanded", "kotlin",
                          "nb-cache", "noVersion", "vcs-1"}}},
         .neverHolds = repositoriesAnd({"gradle.properties", "init.gradle", "init.gradle.kts"})},

        {.kind = ArtifactKind::pycache,
         .title = "Python bytecode",
         .markers = {Marker::fileMatching("*.py")},
         .signatures = {{"Python", {}, {Signature::onlyFilesMatching("*.*.pyc")}, any, none}}},

        {.kind = ArtifactKind::pytestCache,
         .title = "pytest cache",
         .markers = pythonFiles(),
         .signatures = {{"pytest",
                         {},
                         {Signature::allOf({Signature::file("CACHEDIR.TAG"), Signature::file("README.md"),
                                            Signature::inside("v", Signature::folder("cache"))})},
                         {"CACHEDIR.TAG", "README.md", ".gitignore"},
                         {"v", "d"}}}},

        // Editable packages lie in "src"; with it the folder stays.
        {.kind = ArtifactKind::venv,
         .title = "Python environment",
         .markers = files(pythonProjectFiles()),
         .signatures = {{"Python",
                         {},
                         {Signature::allOf({Signature::file("pyvenv.cfg"),
                                            Signature::inside("bin", Signature::fileMatching("activate*")),
                                            Signature::inside("lib", Signature::folderMatching("python*"))})},
                         {"pyvenv.cfg", ".gitignore", "CACHEDIR.TAG", ".lock"},
                         {"bin", "include", "lib", "lib64", "share"}}}},

        // It holds clones of the packages that a project depends on.
        {.kind = ArtifactKind::xcodeDerivedData,
         .title = "Xcode DerivedData",
         .markers = {Marker::fileMatching("*.xcodeproj"), Marker::fileMatching("*.xcworkspace"),
                     Marker::file("Package.swift")},
         .signatures = {{"Xcode",
                         {},
                         {Signature::allOf(
                              {Signature::file("info.plist"), Signature::folder("Build"), Signature::folder("Logs")}),
                          Signature::inside("*-????????????????????????????", Signature::file("info.plist"))},
                         {"info.plist"},
                         {"Build", "Index", "Index.noindex", "Logs", "SourcePackages", "TextIndex", "ModuleCache",
                          "ModuleCache.noindex", "CompilationCache.noindex", "SDKStatCaches.noindex",
                          "SymbolCache.noindex", "*-????????????????????????????"}}},
         .neverHolds = none},
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

std::optional<Glob::Patterns> patternsOf(const Names& names) {
    if (names == any) return std::nullopt;
    return Glob::Patterns::compile(names).value_or(Glob::Patterns());
}

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
        made.title = row.title;
        made.neverHolds = std::move(row.neverHolds);
        made.persons = Glob::Patterns::compile(made.neverHolds).value_or(Glob::Patterns());
        for (const Marker& marker : row.markers)
            made.markerBits |= markers.add(marker);
        for (const ToolSignature& signature : row.signatures) {
            made.tools.push_back({signature.marker ? markers.add(*signature.marker) : ArtifactMarkers(),
                                  patternsOf(signature.ownFiles), patternsOf(signature.ownFolders)});
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
    std::string text(namesOf(kind).folderName);
    for (const Marker& marker : markers)
        text += "; " + marker.location();
    for (const ToolSignature& signature : signatures) {
        text += "; " + signature.tool;
        if (signature.marker) text += " " + signature.marker->location();
        text += ": " + Signature::anyOf(signature.anyOf).description();
        text += ", files " + listed(signature.ownFiles) + ", folders " + listed(signature.ownFolders);
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
