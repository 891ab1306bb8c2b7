#include "rules/ArtifactFacts.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <utility>

namespace vostrel {

namespace {

using Marker = ArtifactMarker;
using Signature = ArtifactSignature;
using Names = std::vector<std::string>;

Names joined(std::initializer_list<Names> lists) {
    Names all;
    for (const Names& list : lists)
        all.insert(all.end(), list.begin(), list.end());
    return all;
}

/// Each of the folders with each of the paths below it.
Names below(const Names& folders, const Names& paths) {
    Names all;
    for (const std::string& folder : folders) {
        for (const std::string& path : paths)
            all.push_back(fmt::format("{}/{}", folder, path));
    }
    return all;
}

std::vector<Signature> foldersOfSystems() {
    std::vector<Signature> folders;
    for (const std::string& name : ArtifactLayout::systems())
        folders.push_back(Signature::folderMatching(name));
    return folders;
}

std::string repeated(std::string_view character, int count) {
    std::string pattern;
    while (count-- > 0)
        pattern += character;
    return pattern;
}

std::string digits(int count) {
    return repeated("[0-9a-f]", count);
}

// What a person makes and no tool of the table leaves anywhere, not even in a package.
const Names documents{"*.doc",       "*.docx",     "*.docm",  "*.odt",    "*.ods",      "*.odp",  "*.odg",  "*.rtf",
                      "*.pages",     "*.numbers",  "*.xls",   "*.xlsx",   "*.xlsm",     "*.ppt",  "*.pptx", "*.tex",
                      "*.bib",       "*.epub",     "*.mobi",  "*.djvu",   "*.scriv",    "*.vsd",  "*.vsdx", "*.xmind",
                      "*.sketch",    "*.fig",      "*.xd",    "*.psd",    "*.ai",       "*.indd", "*.xcf",  "*.kra",
                      "*.afphoto",   "*.afdesign", "*.blend", "*.stl",    "*.3mf",      "*.step", "*.dwg",  "*.dxf",
                      "*.skp",       "*.ipynb",    "*.pst",   "*.mbox",   "*.kdbx",     "*.kdb",  "*.heic", "*.heif",
                      "*.cr2",       "*.cr3",      "*.nef",   "*.arw",    "*.dng",      "*.orf",  "*.rw2",  "*.raf",
                      "*.mov",       "*.avi",      "*.mkv",   "*.m4v",    "*.mts",      "*.wmv",  "*.aiff", "*.logicx",
                      "*.band",      "*.als",      "*.dmg",   "*.iso",    "*.appimage", "*.ova",  "*.vmdk", "*.qcow2",
                      "*.vdi",       "*.rar",      "*.bak",   "*.unity",  "*.gpx",      "*.ipa",  "*.aab",  "*.msi",
                      "*.xcarchive", "id_rsa",     "id_dsa",  "id_ecdsa", "id_ed25519"};

// What packages and examples may bring along, but what compilers and bundlers do not make.
const Names belongings =
    joined({documents, {"*.pdf", "*.csv",   "*.tsv",  "*.eml",       "*.ics",    "*.vcf",      "*.jpg",      "*.jpeg",
                        "*.tif", "*.tiff",  "*.raw",  "*.mp3",       "*.m4a",    "*.wav",      "*.flac",     "*.ogg",
                        "*.mp4", "*.zip",   "*.7z",   "*.tar",       "*.tgz",    "*.tar.*",    "*.exe",      "*.msi",
                        "*.pkg", "*.deb",   "*.rpm",  "mapping.txt", "*.sqlite", "*.sqlite3",  "*.sqlitedb", "*.db",
                        "*.mdf", "*.accdb", "*.dat",  "*.sav",       "*.sql",    "*.dump",     ".env",       ".env.*",
                        "*.env", "*.pem",   "*.key",  "*.p12",       "*.pfx",    "*.keystore", "*.jks",      "*.gpg",
                        "*.asc", "*.sh",    "*.bash", "*.zsh",       "*.fish",   "*.bat",      "*.ps1",      "*.py",
                        "*.rb",  "*.php",   "*.pl",   "*.lua",       "*.go",     "*.cs",       "*.scala",    "*.clj",
                        "*.hs",  "*.tsx",   "*.jsx",  "*.svelte",    "*.astro",  "*.scss",     "*.sass",     "*.less",
                        "CNAME"}});

// What people write, and no tool into a folder of its own; compilers do, in places that they name.
const Names writings{"*.md", "*.txt"};
const Names sources{"*.swift", "*.c", "*.cc", "*.cpp", "*.cxx", "*.m", "*.mm", "*.java", "*.kt", "*.rs", "*.ts"};

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

const Names nodePackages{"[!.]*/**", ".bin/*", ".cache/**", ".vite/**", ".vite-temp/**"};

// Not the folders "doc", "package" and "criterion": what lies there need not come again.
Names cargoFiles() {
    const std::string hash = "*-" + digits(16);
    const Names profile{".cargo-lock",
                        ".cargo-artifact-lock",
                        ".cargo-build-lock",
                        "LIST",
                        "PROGRAM",
                        ".fingerprint/" + hash + "/**",
                        "build/" + hash + "/**",
                        "deps/" + hash,
                        "deps/" + hash + ".*",
                        "examples/LIST",
                        "examples/PROGRAM",
                        "examples/" + hash,
                        "examples/" + hash + ".*",
                        "incremental/*-*/s-*-*/**",
                        "incremental/*-*/s-*-*.lock"};
    return joined(
        {{"CACHEDIR.TAG", ".rustc_info.json", ".rustdoc_fingerprint.json", ".future-incompat-report.json", "tmp/"},
         below({"debug", "release", "SYSTEM/debug", "SYSTEM/release"}, profile),
         {"SYSTEM/CACHEDIR.TAG"}});
}

const Names mavenFiles{"*-[0-9]*.jar",
                       "*-[0-9]*.war",
                       "*-[0-9]*.jar.original",
                       "*-[0-9]*.war.original",
                       "classes/**/*.class",
                       "classes/**/*.properties",
                       "classes/**/*.xml",
                       "classes/**/*.yml",
                       "classes/**/*.yaml",
                       "classes/META-INF/**",
                       "test-classes/**/*.class",
                       "test-classes/**/*.properties",
                       "test-classes/**/*.xml",
                       "test-classes/**/*.yml",
                       "generated-sources/annotations/**",
                       "generated-test-sources/test-annotations/**",
                       "maven-archiver/pom.properties",
                       "maven-status/maven-compiler-plugin/**/*.lst",
                       "surefire-reports/TEST-*.xml",
                       "surefire-reports/*.*.txt",
                       "failsafe-reports/TEST-*.xml",
                       "failsafe-reports/failsafe-summary.xml"};

// Copies of the project's resources may lie in "resources" as well.
// Not what is released from it: "distributions", "install", "publications", signed packages and their mappings. Nor
// folders with names that people like, unless the tool's own files are known: "docs", "reports", "scripts".
const Names gradleFiles{"classes/**/*.class",
                        "classes/*/*/META-INF/*.kotlin_module",
                        "generated/ap_generated_sources/**",
                        "generated/res/**",
                        "generated/source/**",
                        "generated/sources/**",
                        "intermediates/**",
                        "jacoco/*.exec",
                        "kotlin/compile*Kotlin*/**",
                        "kspCaches/**",
                        "libs/*.jar",
                        "outputs/apk/debug/*-debug.apk",
                        "outputs/apk/debug/output-metadata.json",
                        "outputs/logs/manifest-merger-*-report.txt",
                        "reports/problems/problems-report.html",
                        "reports/tests/**/*.css",
                        "reports/tests/**/*.html",
                        "reports/tests/**/*.js",
                        "resources/*/**/*.properties",
                        "resources/*/META-INF/**",
                        "test-results/**/*.bin",
                        "test-results/**/*.xml",
                        "tmp/*ar/MANIFEST.MF",
                        "tmp/compile*/**",
                        "tmp/kapt3/**",
                        "tmp/kotlin-classes/**"};

const Names gradleCacheFiles =
    joined({{"file-system.probe", "buildOutputCleanup/buildOutputCleanup.lock", "buildOutputCleanup/cache.properties",
             "buildOutputCleanup/outputFiles.bin", "checksums/checksums.lock", "checksums/*-checksums.bin",
             "vcs-1/gc.properties", "noVersion/buildLogic.lock", "kotlin/sessions/", "kotlin/errors/"},
            below({"[0-9].[0-9]", "[0-9].[0-9].[0-9]", "[0-9].[0-9][0-9]", "[0-9].[0-9][0-9].[0-9]"},
                  {"gc.properties", "checksums/checksums.lock", "checksums/*-checksums.bin",
                   "dependencies-accessors/gc.properties", "dependencies-accessors/dependencies-accessors.lock",
                   "dependencies-accessors/executionHistory.bin", "executionHistory/executionHistory.bin",
                   "executionHistory/executionHistory.lock", "expanded/expanded.lock", "fileChanges/last-build.bin",
                   "fileContent/fileContent.lock", "fileHashes/fileHashes.bin", "fileHashes/fileHashes.lock",
                   "fileHashes/resourceHashesCache.bin", "javaCompile/*.bin", "javaCompile/javaCompile.lock",
                   "vcsMetadata/"})});

Names swiftFiles() {
    const Names build{"**", "swift-version-*.txt", "*.build/DerivedSources/**/*.swift", "*.derived/*.swift"};
    const Names builds = joined({below({"SYSTEM/debug", "SYSTEM/release"}, build), {"plugins/outputs/**/*.swift"}});
    return joined({{"workspace-state.json", ".lock", "debug", "release", "debug.yaml", "release.yaml",
                    "plugin-tools.yaml", "build.db", "build.db-shm", "build.db-wal", "manifest.db", "artifacts/**",
                    "checkouts/*/***", "index-build/**", "plugins/**", "prebuilts/**", "repositories/*/***"},
                   builds,
                   below({"index-build"}, joined({builds, {"build.db", "manifest.db"}}))});
}

// A project's folder ends in 28 letters.
Names derivedDataFiles() {
    const Names intermediates =
        below({"Build/Intermediates.noindex", "Index.noindex/Build/Intermediates.noindex"},
              {"**", "**/DerivedSources/**/*.swift", "**/DerivedSources/**/*.c", "**/DerivedSources/**/*.m",
               "XCBuildData/build.db", "XCBuildData/**/target-graph.txt"});
    const Names project =
        joined({intermediates,
                {"info.plist", "Build/Products/**", "Index/**", "Index.noindex/**", "Logs/*/*.plist",
                 "Logs/*/*.xcactivitylog", "Logs/*/*.xcresult/**", "Logs/*/*.xcresult/database.sqlite3",
                 "Logs/*/Cache.db", "OpenQuickly-ReferencedFrameworks.noindex/**", "SourcePackages/manifest.db",
                 "SourcePackages/workspace-state.json", "SourcePackages/artifacts/**", "SourcePackages/checkouts/*/***",
                 "SourcePackages/plugins/**", "SourcePackages/prebuilts/**", "SourcePackages/repositories/*/***",
                 "TextIndex/**"}});
    return joined({project,
                   below({"*-" + repeated("[a-z]", 28)}, project),
                   {"CompilationCache.noindex/**", "ModuleCache/**", "ModuleCache.noindex/**",
                    "SDKStatCaches.noindex/**", "SymbolCache.noindex/**"}});
}

// What stands in no package's own list.
Names environmentFiles() {
    return joined({{"pyvenv.cfg", ".gitignore", "CACHEDIR.TAG", ".lock", "lib64", "include/"},
                   below({"bin"}, {"python", "python3", "python3.[0-9]", "python3.[0-9][0-9]", "pip", "pip3",
                                   "pip3.[0-9]", "pip3.[0-9][0-9]", "pip-3.[0-9]", "pip-3.[0-9][0-9]", "activate",
                                   "activate.bat", "activate.csh", "activate.fish", "activate.nu", "activate.ps1",
                                   "activate_this.py", "deactivate.bat", "pydoc.bat"}),
                   below({"lib/python3.[0-9]/site-packages", "lib/python3.[0-9][0-9]/site-packages"},
                         {"_virtualenv.pth", "_virtualenv.py", "distutils-precedence.pth", "**/__pycache__/*.pyc"})});
}

const Names hashedBundles{"*-HASH.css", "*-HASH.css.map", "*-HASH.js", "*-HASH.js.map", "*-HASH.woff", "*-HASH.woff2"};

// Each tool's row: its name, a further file beside, what its folder shows (any of them), and where its files lie.
std::vector<Row> rows() {
    return {
        // Every package must stand in the manager's own list as well.
        {.kind = ArtifactKind::nodeModules,
         .semanticsRevision = 2,
         .title = "Node packages",
         .markers = files({"package.json"}),
         .signatures =
             {{"npm", {}, {Signature::file(".package-lock.json")}, joined({nodePackages, {".package-lock.json"}})},
              {"Yarn",
               {},
               {Signature::file(".yarn-integrity"), Signature::file(".yarn-state.yml")},
               joined({nodePackages, {".yarn-integrity", ".yarn-state.yml"}})},
              {"pnpm",
               {},
               {Signature::file(".modules.yaml")},
               joined({nodePackages,
                       {".modules.yaml", ".pnpm-workspace-state.json", ".pnpm-workspace-state-v1.json",
                        ".pnpm/lock.yaml", ".pnpm/*/**"}})}},
         .neverHolds = documents},

        {.kind = ArtifactKind::nextBuild,
         .semanticsRevision = 2,
         .title = "Next.js build",
         .markers = files({"package.json"}),
         .signatures = {{"Next.js",
                         {},
                         {Signature::allOf({Signature::file("BUILD_ID"), Signature::file("build-manifest.json")}),
                          Signature::allOf({Signature::file("build-manifest.json"), Signature::folder("server"),
                                            Signature::folder("static")})},
                         {"BUILD_ID",
                          "*-manifest.json",
                          "*-manifest.js",
                          "export-detail.json",
                          "export-marker.json",
                          "next-minimal-server.js.nft.json",
                          "next-server.js.nft.json",
                          "package.json",
                          "required-server-files.js",
                          "required-server-files.json",
                          "trace",
                          "trace-build",
                          "turbopack",
                          "lock",
                          "build/**",
                          "cache/**",
                          "diagnostics/**",
                          "server/**",
                          "static/**",
                          "types/**"}}},
         .neverHolds = joined({belongings, writings})},

        {.kind = ArtifactKind::nuxtBuild,
         .semanticsRevision = 2,
         .title = "Nuxt build",
         .markers = {Marker::fileMatching("nuxt.config.*")},
         .signatures = {{"Nuxt",
                         {},
                         {Signature::allOf({Signature::file("nuxt.d.ts"), Signature::file("tsconfig.json")}),
                          Signature::allOf({Signature::file("App.js"), Signature::file("client.js"),
                                            Signature::file("router.js"), Signature::file("server.js")})},
                         {"*.d.ts",
                          "app.config.mjs",
                          "nitro.json",
                          "nuxt.json",
                          "tsconfig.json",
                          "tsconfig.app.json",
                          "tsconfig.node.json",
                          "tsconfig.server.json",
                          "tsconfig.shared.json",
                          "App.js",
                          "axios.js",
                          "client.js",
                          "empty.js",
                          "index.js",
                          "jsonp.js",
                          "loading.html",
                          "middleware.js",
                          "router.js",
                          "router.scrollBehavior.js",
                          "routes.json",
                          "server.js",
                          "store.js",
                          "utils.js",
                          "components/*.js",
                          "components/nuxt-*.vue",
                          "dev/**",
                          "dist/**",
                          "manifest/**/*.json",
                          "mixins/fetch.*.js",
                          "schema/nuxt.schema.*",
                          "types/**/*.d.ts",
                          "views/app.template.html",
                          "views/error.html"}}},
         .neverHolds = joined({belongings, writings})},

        // Its config.json and the like are settings; a folder with one stays. Logs alone are no proof.
        {.kind = ArtifactKind::turboCache,
         .title = "Turborepo cache",
         .markers = files({"turbo.json", "package.json"}),
         .signatures = {{"Turborepo",
                         {},
                         {Signature::inside("cache", Signature::fileMatching(digits(16) + ".tar.zst"))},
                         {"turbo-build.log", "turbo-dev.log", "turbo-lint.log", "turbo-test.log",
                          "cache/" + digits(16) + ".tar.zst", "cache/" + digits(16) + "-meta.json",
                          "cookies/[0-9]*.cookie", "daemon/" + digits(16) + "-turbo.log.*"}}},
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

        // None of these is sure to empty the folder before it fills it, and a project's own public files are copied
        // there, so only what lies in exactly the layout of a bundle is one.
        {.kind = ArtifactKind::dist,
         .semanticsRevision = 2,
         .title = "Web bundle",
         .markers = {Marker::fileMatching("vite.config.*"), Marker::file("angular.json"),
                     Marker::fileMatching("astro.config.*")},
         .signatures =
             {{"Vite",
               Marker::fileMatching("vite.config.*"),
               {Signature::allOf({Signature::file("index.html"),
                                  Signature::inside("assets", Signature::fileMatching("index-????????.js"))})},
               joined({{"index.html", "vite.svg", ".vite/manifest.json"}, below({"assets"}, hashedBundles)})},
              {"Angular",
               Marker::file("angular.json"),
               {Signature::inside(
                   "*", Signature::allOf({Signature::file("3rdpartylicenses.txt"),
                                          Signature::inside("browser", Signature::fileMatching("main-????????.js"))}))},
               joined({below({"*"}, {"3rdpartylicenses.txt", "prerendered-routes.json", "browser/index.html",
                                     "browser/index.csr.html", "browser/favicon.ico"}),
                       below({"*/browser"}, hashedBundles)})},
              {"Astro",
               Marker::fileMatching("astro.config.*"),
               {Signature::allOf({Signature::file("index.html"),
                                  Signature::inside("_astro",
                                                    Signature::anyOf({Signature::fileMatching("*.????????.css"),
                                                                      Signature::fileMatching("*.????????.js")}))})},
               {"index.html", "404.html", "_astro/*.HASH.css", "_astro/*.HASH.js"}}}},

        {.kind = ArtifactKind::target,
         .semanticsRevision = 2,
         .title = "Cargo or Maven build",
         .markers = files({"Cargo.toml", "pom.xml"}),
         .signatures = {{"Cargo",
                         Marker::file("Cargo.toml"),
                         {Signature::allOf({Signature::file("CACHEDIR.TAG"), Signature::file(".rustc_info.json")})},
                         cargoFiles()},
                        {"Maven",
                         Marker::file("pom.xml"),
                         {Signature::inside("maven-archiver", Signature::file("pom.properties")),
                          Signature::inside("maven-status", Signature::folder("maven-compiler-plugin"))},
                         mavenFiles}},
         .neverHolds = joined({belongings, {"Cargo.toml", "pom.xml"}})},

        {.kind = ArtifactKind::swiftBuild,
         .semanticsRevision = 2,
         .title = "Swift package build",
         .markers = files({"Package.swift"}),
         .signatures = {{"Swift Package Manager",
                         {},
                         {Signature::allOf(
                             {Signature::file("workspace-state.json"),
                              Signature::anyOf({Signature::folder("checkouts"), Signature::folder("repositories"),
                                                Signature::anyOf(foldersOfSystems())})})},
                         swiftFiles(),
                         joined({belongings, writings, sources})}},
         .neverHolds = documents},

        // Every pod must stand in the manifest as well.
        {.kind = ArtifactKind::pods,
         .semanticsRevision = 2,
         .title = "CocoaPods pods",
         .markers = files({"Podfile"}),
         .signatures = {{"CocoaPods",
                         Marker::file("Podfile.lock"),
                         {Signature::allOf({Signature::file("Manifest.lock"), Signature::folder("Pods.xcodeproj"),
                                            Signature::folder("Target Support Files")})},
                         {"Manifest.lock", "*/**"}}},
         .neverHolds = documents},

        {.kind = ArtifactKind::gradleBuild,
         .semanticsRevision = 2,
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
                         gradleFiles}},
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
         .semanticsRevision = 2,
         .title = "Xcode DerivedData",
         .markers = {Marker::fileMatching("*.xcodeproj"), Marker::fileMatching("*.xcworkspace"),
                     Marker::file("Package.swift")},
         .signatures = {{"Xcode",
                         {},
                         {Signature::allOf(
                              {Signature::file("info.plist"), Signature::folder("Build"), Signature::folder("Logs")}),
                          Signature::inside("*-" + repeated("[a-z]", 28), Signature::file("info.plist"))},
                         derivedDataFiles(),
                         joined({belongings, writings, sources})}},
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
