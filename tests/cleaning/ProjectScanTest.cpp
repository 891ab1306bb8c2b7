#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#ifdef __linux__
#include <sys/mount.h>
#endif

#include <mutex>
#include <thread>

#include "cleaning/PlannerHome.h"
#include "rules/ArtifactFacts.h"
#include "rules/ProjectScanner.h"
#include "support/GitIndexBytes.h"
#include "support/PrivateMounts.h"
#include "support/SumOnDisk.h"

namespace vostrel {
namespace {

using namespace std::chrono_literals;
using std::chrono::days;
using testing::Contains;
using testing::HasSubstr;
using testing::Pair;
using testing::UnorderedElementsAre;

constexpr const char* planned = "planned";
constexpr const char* unrecognised = "not recognized as a tool's folder";

std::set<ArtifactKind> allKinds() {
    std::set<ArtifactKind> kinds;
    for (const auto& names : artifactKinds)
        kinds.insert(names.kind);
    return kinds;
}

class ProjectScanTest : public testing::Test {
protected:
    Rule rule() const {
        Rule made = home.ruleOn("code");
        made.target = ProjectScanTarget{{home / "code"}, allKinds(), 30};
        return made;
    }
    Verdicts verdictsOf(const Rule& rule) {
        const auto plan = home.plan(rule);
        if (!plan) return {{"the plan", plan.error().sentence}};
        return home.verdicts(*plan);
    }
    /// Makes files and links ("a -> b"); those that a tool is known by hold what it writes.
    void makeAll(const std::string& folder, const std::vector<std::string>& entries) const {
        const std::map<std::string, const char*> contents{
            {"CACHEDIR.TAG", "Signature: 8a477f597d28d172789f06886806bc55\n# made by a tool"},
            {".package-lock.json",
             R"({"packages": {"node_modules/a": {}, "node_modules/@b/c": {"link": false}, "node_modules/own": {"link": true}}})"},
            {"Manifest.lock",
             "PODS:\n  - Lib (1.0)\n  - Own (1.0)\n\nEXTERNAL SOURCES:\n  Own:\n    :path: \"../Own\"\n"},
            {".yarn-integrity", R"({"lockfileEntries": {"a@^1.0.0": "", "@b/c@1": "", "linked@link:../linked": ""}})"},
            {".yarn-state.yml",
             "\"a@npm:1.0.0\":\n  locations:\n    - \"node_modules/a\"\n\"own@workspace:own\":\n  locations:\n    - "
             "\"node_modules/own\"\n"},
            {"lock.yaml", "importers:\n  own@1:\n\npackages:\n\n  a@1:\n  ab@1(a@1):\n  '@b/c@2':\n"},
            {"workspace-state.json",
             R"({"object": {"dependencies": [{"packageRef": {"location": "https://host/from.git"}, "subpath": "a",
                                              "state": {"name": "sourceControlCheckout"}},
                                             {"packageRef": {"location": "/home/own"}, "subpath": "own",
                                              "state": {"name": "edited"}}]}})"},
            {"RECORD", "a/a.py,sha256=x,7\na-1.dist-info/RECORD,,\n../../../bin/tool,,\n"},
            {"README.md", "# pytest cache directory #\n"},
            {"config", "[remote \"origin\"]\n\turl = https://host/from.git\n\tmirror = true\n"},
            {"main", "0123456789abcdef0123456789abcdef01234567\n"},
            {"pom.properties", "artifactId=a\nversion=1.0\n"},
            {"angular.json", R"({"projects": {"app": {}}})"},
            {"index.html",
             "<script src=\"/assets/index-B8sKq2xZ.js\"></script><link href=/assets/index-D_tn1WmV.css>"
             "<link href=/_astro/page.B8sKq2xZ.css><script src=main-5LKJ2XQ3.js>"},
            {"index-B8sKq2xZ.js", "import(\"./about-C5pvF9Zr.js\");\n"}};
        const std::set<std::string> writtenLast{".package-lock.json", ".yarn-integrity", ".modules.yaml",
                                                "Manifest.lock", "trace"};
        for (const auto& entry : entries) {
            const auto arrow = entry.find(" -> ");
            const std::string path = folder + "/" + entry.substr(0, arrow);
            const auto known = contents.find(std::filesystem::path(path).filename());
            if (arrow != std::string::npos) {
                home.home.makeLink(path, entry.substr(arrow + 4));
            } else {
                home.home.makeFile(path, known == contents.end() ? "content" : known->second);
                if (writtenLast.contains(std::filesystem::path(path).filename())) home.setAge(path, days(39));
            }
        }
    }
    void makeNodeProject(const std::string& folder) const {
        makeAll(folder,
                {"package.json", "src/main.js", "node_modules/.package-lock.json", "node_modules/a/package.json"});
    }
    ProjectScanner::Discovery discover(unsigned helpers = 0) {
        const auto status = statusOfPath(home / "code");
        return ProjectScanner(home.planner.guards, *home.source, helpers)
            .discover(home / "code", {}, {status->device, status->mount}, allKinds(), {});
    }

    PlannerHome home;
};

/// Build folders as their tools leave them: a name, the folder, what lies beside it and what in it; then a file that
/// makes it a person's, and the folder in which a repository inside would lie ("-" where the tool keeps repositories).
constexpr std::string_view layouts = R"(
npm | node_modules | package.json | .package-lock.json, .bin/a -> ../a/a.js, a/package.json, @b/c/package.json | mine.js | a
npm-unlisted | node_modules | package.json | .package-lock.json, a/package.json | mine/package.json | a
yarn | node_modules | package.json | .yarn-integrity, .bin/a -> ../a/a.js, own -> ../packages/own, a/package.json, @b/c/package.json | mine/package.json | a
yarn-2 | node_modules | package.json | .yarn-state.yml, a/package.json | @my/own/package.json | a
pnpm | node_modules | package.json | .modules.yaml, .pnpm/lock.yaml, .pnpm/a@1/node_modules/a/a.js, a -> .pnpm/a@1/node_modules/a, .pnpm/@b+c@2_a@1/node_modules/@b/c/c.js | mine/package.json | .pnpm
next | .next | package.json | BUILD_ID, build-manifest.json, trace, server/app/page.js, static/chunks/a.js | notes.txt | server
next-dev | .next | package.json | build-manifest.json, server/page.js, static/a.js | server/page.tsx | server
nuxt | .nuxt | nuxt.config.ts | nuxt.d.ts, tsconfig.json, types/imports.d.ts | page.vue | types
turbo | .turbo | turbo.json | cache/0123456789abcdef.tar.zst, cookies/1.cookie, turbo-build.log | turbo-diary.log | cache
parcel | .parcel-cache | package.json | data.mdb, lock.mdb, snapshot-0123456789abcdef.txt, 0123456789abcdef-AssetGraph-0 | ab/notes.md | -
vite | dist | vite.config.ts, index.html, public/vite.svg | index.html, vite.svg, assets/index-B8sKq2xZ.js, assets/index-B8sKq2xZ.js.map, assets/about-C5pvF9Zr.js, assets/index-D_tn1WmV.css | CNAME | assets
angular | dist | angular.json | app/3rdpartylicenses.txt, app/browser/index.html, app/browser/main-5LKJ2XQ3.js | app/novel.txt | app
astro | dist | astro.config.mjs, src/pages/a.astro | index.html, _astro/page.B8sKq2xZ.css | diary/index.html | _astro
cargo | target | Cargo.toml | CACHEDIR.TAG, .rustc_info.json, debug/a, debug/a.d, debug/deps/a-0123456789abcdef.d, aarch64-apple-darwin/release/a.wasm, aarch64-apple-darwin/release/a.d | debug/savegame | debug
maven | target | pom.xml | classes/A.class, maven-archiver/pom.properties, a-1.0.jar | classes/A.java | classes
swift | .build | Package.swift | workspace-state.json, checkouts/a/.git/HEAD, checkouts/a/.git/objects/info/alternates, checkouts/a/.git/refs/heads/main, repositories/from-0123abcd/refs/heads/main, repositories/from-0123abcd/HEAD, repositories/from-0123abcd/config, debug -> arm64-apple-macosx/debug, arm64-apple-macosx/debug/a, arm64-apple-macosx/debug/a.product/Objects.LinkFileList | wasm32-my-thesis/a.swift | arm64-apple-macosx/debug
pods | Pods | Podfile, Podfile.lock | Manifest.lock, Pods.xcodeproj/project.pbxproj, Target Support Files/Lib/Lib.debug.xcconfig, Headers/Public/a.h -> ../../Lib/a.h, Lib/a.m, Lib/README.md | Notes/a.txt | Lib
gradle | build | build.gradle.kts, src/main/resources/x/notes.md | classes/java/main/A.class, tmp/compileJava/previous-compilation-data.bin, libs/a-1.0.jar, libs/a-1.0-sources.jar, resources/main/x/notes.md | docs/notes.txt | classes
android | build | build.gradle | intermediates/a/b.flat, outputs/logs/manifest-merger-debug-report.txt, generated/source/r/R.java, outputs/apk/debug/a-debug.apk | outputs/apk/release/a-release.apk | intermediates
gradle-cache | .gradle | settings.gradle | 8.5/gc.properties, 8.5/fileHashes/fileHashes.lock, buildOutputCleanup/cache.properties | 3.5 photos/a.bin | 8.5
python | __pycache__ | a.py, b.py | a.cpython-311.pyc, b.cpython-311.opt-1.pyc, b.cpython-312-pytest-8.3.4.pyc | a.thesis.pyc | -
python-lost | __pycache__ | a.py | a.cpython-311.pyc | lost.cpython-311.pyc | -
pytest | .pytest_cache | a.py | CACHEDIR.TAG, README.md, .gitignore, v/cache/nodeids | v/notes.md | v
venv | .venv | requirements.txt | pyvenv.cfg, bin/activate, bin/tool, bin/python -> /usr/bin/python3, lib/python3.11/site-packages/a/a.py, lib/python3.11/site-packages/a/__pycache__/a.cpython-311.pyc, lib/python3.11/site-packages/a-1.dist-info/RECORD | bin/backup | lib
xcode | DerivedData | App.xcodeproj/project.pbxproj | App-abcdefghijklmnopqrstuvwxyzab/info.plist, ModuleCache.noindex/a.pcm | App-abcdefghijklmnopqrstuvwxyzab/raw.csv | ModuleCache.noindex
xcodebuild | DerivedData | Package.swift | info.plist, Build/Products/Debug/a.app/a, Build/Intermediates.noindex/a.build/DerivedSources/a.swift, Build/Intermediates.noindex/a.build/a_dependency_info.dat, Logs/Build/01234567-89AB-CDEF-0123-456789ABCDEF.xcactivitylog, Logs/Test/Test-a-2024.01.31_10-00-00-+0100.xcresult/Data/data.0~a==, Index.noindex/DataStore/v5/units/a.o-3J0ABCDEFGHIJ, SourcePackages/workspace-state.json, SourcePackages/checkouts/a/.git/HEAD | Lake-for my thesis, all of it 2024/info.plist | Build/Products
)";

TEST_F(ProjectScanTest, plansWhatAToolMadeAndLeavesEveryNearMiss) {
    Verdicts expected;
    std::set<ArtifactKind> covered;
    for (const auto& line : split(layouts.substr(1), "\n")) {
        const auto row = split(line, " | ");
        const std::string& folder = row.at(1);
        const auto beside = split(row.at(2), ", ");
        covered.insert(kindOfFolder(folder).value());
        const auto plant = [&](const std::string& project, const std::vector<std::string>& content,
                               const char* verdict) {
            const std::string path = "code/" + row.at(0) + "/" + project + "/";
            makeAll(path, beside);
            makeAll(path + folder, content);
            if (verdict != nullptr) expected[path + folder] = verdict;
            return path;
        };
        const auto content = split(row.at(3), ", ");
        const auto made = plant("made", content, planned);
        plant("in a package.app", content, nullptr);
        plant("by hand", {"notes.txt", "drafts/one.txt"}, unrecognised);
        const auto unmarked = plant("unmarked", content, unrecognised);
        for (const auto& marker : beside)
            std::filesystem::remove_all(home / (unmarked + marker.substr(0, marker.find('/'))));
        makeAll(unmarked, {"notes.txt"});
        makeAll(plant("a person's", content, unrecognised) + folder, {row.at(4)});
        if (row.at(5) != "-")
            makeAll(plant("with a repository", content, unrecognised) + folder, {row.at(5) + "/x/.git/HEAD"});
        makeAll(plant("linked", {}, "that is a link"), {folder + " -> " + (home / (made + folder)).native()});
    }

    EXPECT_THAT(verdictsOf(rule()), testing::ContainerEq(expected));
    EXPECT_EQ(covered, allKinds());
}

/// A project's files and, after each "|", those that make one of its build folders none, though the names almost fit.
constexpr std::string_view nearMisses = R"(
Cargo.toml, target/.rustc_info.json, target/debug/a, target/CACHEDIR.TAG
package.json, node_modules/.modules.yaml, node_modules/.pnpm/lock.yaml | node_modules/mine | node_modules/.pnpm/b@1/node_modules/b/b.js | node_modules/.pnpm/own@1/node_modules/own/own.js | node_modules/.pnpm/node_modules/mine/index.js | node_modules/.pnpm/a@1_2024-backup/node_modules/a/a.js
package.json, node_modules/.package-lock.json, node_modules/a/package.json | node_modules/a/node_modules/mine/package.json | node_modules/a/novel.odt
pom.xml, target/maven-archiver/pom.properties | target/classes/META-INF/a/HEAD, target/classes/META-INF/a/objects/a, target/classes/META-INF/a/refs/a | target/a-1.0.jar, target/a-1.0-rc1.jar | target/surefire-reports/my.notes.txt | target/holiday-2024.jar
Package.swift, .build/workspace-state.json | .build/my-own-notes/a | .build/checkouts/mine/.git/HEAD | .build/checkouts/own/.git/HEAD | .build/repositories/mine-0123abcd/HEAD | .build/arm64-apple-macosx/debug/main.swift | .build/repositories/from-20240131/config
Package.swift, .build/workspace-state.json | .build/repositories/from-0123abcd/config, .build/repositories/from-0123abce/config | .build/repositories/from-0123abcd/HEAD | .build/checkouts/a/.git/objects/ab/0123456789abcdef0123456789abcdef012345 | .build/artifacts/mine/notes/a | .build/arm64-apple-macosx/debug/notes
Package.swift, .build/workspace-state.json | .build/checkouts/a/.git/refs/heads/notes | .build/arm64-apple-macosx/debug/a.bundle/notes
App.xcodeproj/a, DerivedData/info.plist | DerivedData/Build/Products/notes.txt, DerivedData/Logs/Build/LogStoreManifest.plist | DerivedData/Build/Products/main.swift, DerivedData/Logs/Build/LogStoreManifest.plist | DerivedData/Build/Products/a, DerivedData/Logs/notes.md
App.xcodeproj/a, DerivedData/info.plist | DerivedData/Build/a.o, DerivedData/Logs/Mine/LogStoreManifest.plist
App.xcodeproj/a, DerivedData/App-abcdefghijklmnopqrstuvwxyzab/info.plist | DerivedData/App-abcdefghijklmnopqrstuvwxyzab/SourcePackages/checkouts/a/.git/HEAD | DerivedData/App-abcdefghijklmnopqrstuvwxyzab/Index.noindex/notes
App.xcodeproj/a, DerivedData/App-abcdefghijklmnopqrstuvwxyzab/info.plist | DerivedData/App-abcdefghijklmnopqrstuvwxyzab/Logs/Test/Test-a-2024.01.31_10-00-00-+0100.xcresult/Data/me.jpg | DerivedData/App-abcdefghijklmnopqrstuvwxyzab/TextIndex/notes
package.json, node_modules/.package-lock.json | node_modules/own/package.json | node_modules/.cache/babel/notes.txt | node_modules/.cache/me.png | node_modules/.vite/deps/photo.png
package.json, node_modules/.modules.yaml, node_modules/.pnpm/lock.yaml, node_modules/.pnpm/a@1/node_modules/a/a.js | node_modules/.pnpm/a@1/node_modules/.bin/mine/x.js
build.gradle, build/tmp/jar/MANIFEST.MF | build/libs/a-1.0.jar, build/libs/a-1.1.jar | build/libs/a_v1.jar, build/libs/a_v2.jar | build/intermediates/talk.key | build/libs/a-1.0.jar, build/libs/driver.jar | build/intermediates/a/notes
Podfile, Podfile.lock, Pods/Manifest.lock, Pods/Pods.xcodeproj/project.pbxproj | Pods/Target Support Files/Lib/notes.txt | Pods/Target Support Files/a/a.h, Pods/Headers/me.png | Pods/Target Support Files/a/a.h, Pods/Lib/.env | Pods/Target Support Files/a/a-umbrella.h, Pods/Headers/Public/mine.h
Package.swift, .build/workspace-state.json, .build/checkouts/a/.git/HEAD | .build/checkouts/a/notes.md
Cargo.toml, target/CACHEDIR.TAG, target/.rustc_info.json | target/release/deps/notes.txt | target/debug/build/a-0123456789abcdef/out/me.png | target/debug/build/a-0123456789abcdef/out/secrets.json
vite.config.ts, dist/index.html, dist/assets/photo-holidays.jpg
vite.config.ts, dist/index.html, dist/assets/index-B8sKq2xZ.js, dist/assets/me.jpg
turbo.json, .turbo/cache/my summer stories.tar.zst
vite.config.ts, dist/index.html, dist/assets/index-20240131.js
package.json, node_modules/.bin/run -> ../run, node_modules/a/package.json
package.json, node_modules/.yarn-state.yml, node_modules/own/package.json
package.json, node_modules/.yarn-integrity, node_modules/linked/package.json
package.json, .next/BUILD_ID, .next/build-manifest.json, .next/cache/thesis.txt
astro.config.mjs, dist/index.html, dist/_astro/.DS_Store
build.gradle, src/main/resources/others.md, build/tmp/jar/MANIFEST.MF, build/resources/main/notes.md
Podfile, Podfile.lock, Pods/Manifest.lock, Pods/Pods.xcodeproj/a, Pods/Target Support Files/a.xcconfig, Pods/Own/a.m
vite.config.ts, index.html, dist/index.html, dist/assets/index-B8sKq2xZ.js, dist/assets/other-C5pvF9Zr.js
vite.config.ts, index.html, dist/index.html, dist/vite.svg, dist/assets/index-B8sKq2xZ.js
vite.config.ts, dist/index.html, dist/assets/index-B8sKq2xZ.js
angular.json, dist/mine/3rdpartylicenses.txt, dist/mine/browser/index.html, dist/mine/browser/main-5LKJ2XQ3.js
requirements.txt, .venv/pyvenv.cfg, .venv/bin/activate, .venv/lib/python3.11/site-packages/mine/__pycache__/mine.cpython-311.pyc
pom.xml, src/main/resources/b.yml, target/maven-archiver/pom.properties, target/classes/application.yml
package.json/a, node_modules/.package-lock.json
package.json, Node_Modules/.package-lock.json
)";

TEST_F(ProjectScanTest, isNotTakenInByNamesThatAlmostFit) {
    int number = 0;
    for (const auto& row : split(nearMisses.substr(1), "\n")) {
        const auto parts = split(row, " | ");
        for (std::size_t miss = 0; miss == 0 || miss + 1 < parts.size(); ++miss, ++number) {
            makeAll(fmt::format("code/{}", number), split(parts[0], ", "));
            if (parts.size() > 1) makeAll(fmt::format("code/{}", number), split(parts[miss + 1], ", "));
        }
    }
    home.home.makeFile("code/0/target/CACHEDIR.TAG", "my own words");

    const auto said = verdictsOf(rule());

    EXPECT_EQ(said.size(), static_cast<std::size_t>(number - 1)) << "the last one has not even the name";
    EXPECT_THAT(said, testing::Each(Pair(testing::_, unrecognised)));
}

/// A project's files, its build folder, what of it is changed after the tool was done, and what is without harm.
constexpr std::string_view changes = R"(
package.json, node_modules/.package-lock.json, node_modules/a/package.json, node_modules/.cache/a/a.json, node_modules/.vite/deps/a.js, node_modules/.vite/deps/_metadata.json | node_modules | a, a/package.json, .vite/deps/a.js | .cache/a, .package-lock.json, .vite
package.json, .next/trace, .next/BUILD_ID, .next/build-manifest.json, .next/server/app/a.js, .next/server/route-cache/a.html | .next | server/app, server/app/a.js | server/route-cache/a.html, server
vite.config.ts, index.html, public/a.svg, dist/a.svg, dist/index.html, dist/assets/index-B8sKq2xZ.js, dist/assets/about-C5pvF9Zr.js, dist/assets/index-D_tn1WmV.css | dist | index.html, assets/about-C5pvF9Zr.js | a.svg, assets
uv.lock, .venv/pyvenv.cfg, .venv/bin/activate, .venv/bin/tool, .venv/lib/python3.11/site-packages/a/a.py, .venv/lib/python3.11/site-packages/a/__pycache__/a.cpython-311.pyc, .venv/lib/python3.11/site-packages/a-1.dist-info/RECORD | .venv | bin/activate, bin/tool, lib/python3.11/site-packages/a/a.py | lib/python3.11/site-packages/a/__pycache__/a.cpython-311.pyc
)";

TEST_F(ProjectScanTest, leavesWhatChangedAfterItsToolWasDone) {
    Verdicts expected;
    for (const auto& line : split(changes.substr(1), "\n")) {
        const auto row = split(line, " | ");
        for (std::size_t column = 2; column < row.size(); ++column) {
            for (const auto& changed : split(row[column], ", ")) {
                const std::string project = fmt::format("code/{}", expected.size());
                makeAll(project, split(row[0], ", "));
                const std::string folder = project + "/" + row[1];
                home.setAge(folder + "/" + changed, days(38));
                expected[folder] = column == 2 ? unrecognised : planned;
            }
        }
    }
    EXPECT_THAT(verdictsOf(rule()), testing::ContainerEq(expected));
}

TEST_F(ProjectScanTest, leavesAFolderThatWasPutInAPackagesPlaceAndACopyThatSomebodyChanged) {
    makeNodeProject("code/p");
    makeAll("code", {"mine/package.json"});
    home.setAge("code/p/node_modules/.package-lock.json", home.now - Date::now());
    std::this_thread::sleep_for(20ms);
    std::filesystem::rename(home / "code/p/node_modules/a", home / "a");
    std::filesystem::rename(home / "code/mine", home / "code/p/node_modules/a");
    makeAll("code/q", {"build.gradle", "src/main/resources/a.yml", "build/tmp/jar/MANIFEST.MF"});
    home.home.makeFile("code/q/build/resources/main/a.yml", "changed");
    EXPECT_THAT(verdictsOf(rule()),
                UnorderedElementsAre(Pair("code/p/node_modules", unrecognised), Pair("code/q/build", unrecognised)));
}

TEST_F(ProjectScanTest, leavesAWorkingCopyThatIsNotAsItWasFetched) {
    Verdicts expected;
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"fetched", "debug.yaml", planned},
        {"edited", "checkouts/a/main.swift", unrecognised},
        {"added to", "checkouts/a/notes.md", unrecognised},
        {"committed in", "checkouts/a/.git/objects/ab/0123456789abcdef0123456789abcdef012345", unrecognised},
    };
    for (const auto& [name, touched, verdict] : rows) {
        const std::string project = std::string("code/") + name;
        makeAll(project, {"Package.swift", ".build/workspace-state.json", ".build/checkouts/a/main.swift"});
        const auto status = statusOfPath(home / (project + "/.build/checkouts/a/main.swift"));
        const GitIndexBytes index{
            .modifiedSeconds = static_cast<std::uint32_t>(status->modified.seconds()),
            .modifiedNanoseconds = static_cast<std::uint32_t>(status->modified.nanosecondsOfSecond()),
            .length = static_cast<std::uint32_t>(status->length)};
        home.home.makeFile(project + "/.build/checkouts/a/.git/index", index.naming({"main.swift"}));
        home.home.makeFile(project + "/.build/" + touched, "as somebody wrote it");
        expected[project + "/.build"] = verdict;
    }
    EXPECT_THAT(verdictsOf(rule()), testing::ContainerEq(expected));
}

TEST_F(ProjectScanTest, leavesWhatTheRepositoryAroundItKeeps) {
    const std::string kept = GitIndexBytes().naming({"node_modules/a/package.json", "package.json"});
    const std::string others = GitIndexBytes().naming({"in/node_modules/a", "node_modules.txt", "package.json"});
    const std::string elsewhere = "gitdir: ../../modules/";
    const char* const unread = "Vostrel could not read";
    // A project, a file beside its build folder, what that holds, and what then becomes of the build folder.
    const std::tuple<const char*, const char*, std::string, const char*> rows[] = {
        {"kept", ".git/index", kept, unrecognised},
        {"others", ".git/index", others, planned},
        {"others/in", "a.js", "", unrecognised},
        {"kept/own", ".git/index", others, planned},
        {"kept/unborn", ".git/HEAD", "ref: refs/heads/main", planned},
        {"headless", ".git/logs/HEAD", "", unread},
        {"broken", ".git/index", kept.substr(0, 99), unread},
        {"broken/in", "a.js", "", unread},
        {"folder", ".git/index/a", "", unread},
        {"submodule", ".git", elsewhere + "kept\n", unrecognised},
        {"worktree", ".git", "gitdir: " + (home / "modules/others").native() + "\r\n", planned},
        {"gone", ".git", elsewhere + "gone\n", unread},
        {"through a link", ".git", elsewhere + "link\n", unread},
        {"no pointer", ".git", "gitdir: \n", unread},
    };
    home.home.makeFile("modules/kept/index", kept);
    home.home.makeFile("modules/others/index", others);
    home.home.makeLink("modules/link", home / "modules/others");
    home.home.makeLink("code/linked/.git", home / "modules/others");
    makeNodeProject("code/linked");
    Verdicts expected{{"code/linked/node_modules", unread}};
    for (const auto& [project, file, content, verdict] : rows) {
        const std::string folder = std::string("code/") + project;
        makeNodeProject(folder);
        home.home.makeFile(folder + "/" + file, content);
        expected[folder + "/node_modules"] = verdict;
    }

    EXPECT_THAT(verdictsOf(rule()), testing::ContainerEq(expected));
}

TEST_F(ProjectScanTest, saysWhyItCouldNotTellWhoMadeAFolder) {
    makeAll("code/p", {"pom.xml", "target/maven-archiver/pom.properties"});
    auto time = std::make_shared<Date>(home.now);
    home.planner.clock = [time] { return *time; };
    const auto verdictAfter = [&](const std::function<int()>& onFirst) {
        bool isFirst = true;
        home.source->onOpen = [&](const std::string& path) {
            return path.ends_with("/maven-archiver") && std::exchange(isFirst, false) ? onFirst() : 0;
        };
        return verdictsOf(rule())["code/p/target"];
    };

    EXPECT_EQ(verdictAfter([] { return 0; }), planned);
    EXPECT_EQ(verdictAfter([] { return EIO; }), "Vostrel could not read");
    EXPECT_EQ(verdictAfter([&] {
                  *time = home.now + home.planner.projectScanBudget + 1s;
                  return 0;
              }),
              "not checked in time");
}

TEST_F(ProjectScanTest, recordsWhichFolderItIsAndWhichProjectOwnsIt) {
    makeNodeProject("code/a");
    makeAll("code/py", {"pyproject.toml", "deep/er/a.py", "deep/er/__pycache__/a.cpython-312.pyc"});
    const auto plan = home.plan(rule()).value();
    ASSERT_EQ(plan.items.size(), 2U);
    const PlannedItem& packages = plan.items[0];
    const auto around = statusOfPath(home / "code/a");
    EXPECT_EQ(packages.fileID, statusOfPath(home / "code/a/node_modules")->inode);
    EXPECT_EQ(packages.parent, (FileIdentity{around->device, around->inode}));
    EXPECT_EQ(packages.project->folder, home / "code/a");
    EXPECT_EQ(plan.items[1].project->folder, home / "code/py");
}

/// What a Node project holds besides, which of its files was touched ten days ago, and which build folder goes all the
/// same. "15/" stands for so many folders in one another.
constexpr std::string_view touches = R"(
 | src/main.js
node_modules/.cache/b/a.json | node_modules/.cache/b/a.json
Cargo.toml, target/CACHEDIR.TAG, target/.rustc_info.json | target/.rustc_info.json | node_modules
target/notes.txt | target/notes.txt
15/d/a.c | 15/d/a.c
15/d/d/a.c | 15/d/d/a.c | node_modules
in/package.json, in/node_modules/.package-lock.json | in/package.json
in/package.json, in/node_modules/.package-lock.json | package.json | in/node_modules
App.app/Contents/a | App.app/Contents/a
setup.py, a/b.py, a/__pycache__/b.cpython-311.pyc | setup.py
)";

TEST_F(ProjectScanTest, plansOnlyProjectsThatNobodyTouched) {
    for (auto line : split(touches.substr(1), "\n")) {
        SCOPED_TRACE(line);
        for (auto at = line.find("15/"); at != std::string::npos; at = line.find("15/"))
            line.replace(at, 3, "d/d/d/d/d/d/d/d/d/d/d/d/d/d/d/");
        const auto row = split(line, " | ");
        std::filesystem::remove_all(home / "code");
        makeNodeProject("code/p");
        makeAll("code/p", split(row.at(0), ", "));
        home.setAge("code/p/" + row.at(1), days(10));
        Verdicts went = verdictsOf(rule());
        std::erase_if(went, [](const auto& said) { return said.second != planned; });
        EXPECT_EQ(went, row.size() > 2 ? (Verdicts{{"code/p/" + row[2], planned}}) : Verdicts());
        Rule patient = rule();
        std::get<ProjectScanTarget>(patient.target).untouchedDays = 9;
        EXPECT_THAT(verdictsOf(patient), Contains(Pair("code/p/node_modules", planned)));
    }
}

TEST_F(ProjectScanTest, looksFiveFoldersDownAndNeverIntoWhatItFound) {
    for (const char* project : {"code/1/2/3/4", "code/1/2/3/4b/5", "code/p", "elsewhere/project"})
        makeNodeProject(project);
    makeAll("code/p/node_modules/a", {"package.json", "node_modules/.package-lock.json", "deep/x"});
    makeAll("code/q", {"package.json", "node_modules/mine.js", "node_modules/a/package.json",
                       "node_modules/a/node_modules/.package-lock.json"});
    makeAll("code/r", {"link -> " + (home / "elsewhere").native()});
    std::mutex lock;
    std::vector<std::string> opened;
    home.source->onOpen = [&](const std::string& path) {
        const std::lock_guard guard(lock);
        opened.push_back(std::filesystem::path(path).lexically_relative(home / "code"));
        return 0;
    };

    const auto found = discover();

    ASSERT_EQ(found.candidates.size(), 2U);
    EXPECT_EQ(found.candidates[0].artifact, home / "code/1/2/3/4/node_modules");
    EXPECT_EQ(found.candidates[1].artifact, home / "code/p/node_modules");
    EXPECT_EQ(found.leftOut.size(), 1U);
    EXPECT_THAT(opened, Contains("p/node_modules").Times(1));
    EXPECT_THAT(opened, testing::Not(Contains(testing::AnyOf(HasSubstr("p/node_modules/"), HasSubstr("link")))));
    const auto ahead = discover(3);
    EXPECT_EQ(ahead.leftOut, found.leftOut);
    EXPECT_TRUE(std::ranges::equal(ahead.candidates, found.candidates, {}, &ProjectScanner::Candidate::stamp,
                                   &ProjectScanner::Candidate::stamp));
}

TEST_F(ProjectScanTest, findsNothingInACodeFolderInsideABuildFolder) {
    // A code folder, what lies beside the folder that holds it, and whether projects in it count.
    const std::tuple<const char*, const char*, bool> rows[] = {
        {"p/.venv/src", "p/requirements.txt", false},  {"q/target/a/b", "q/Cargo.toml", false},
        {"r/DerivedData", "r/App.xcodeproj/a", false}, {"s/node_modules/a", "s/notes.txt", false},
        {"t/App.app/Contents", "t/notes.txt", false},  {"build/code", "notes.txt", true},
        {"u/target/a", "u/requirements.txt", true},    {"v/unreadable/build/a", "v/notes.txt", false},
    };
    home.source->onOpen = [](const std::string& path) { return path.ends_with("/unreadable") ? EACCES : 0; };
    for (const auto& [folder, beside, counts] : rows) {
        makeNodeProject(std::string(folder) + "/project");
        home.home.makeFile(beside);
        Rule scan = rule();
        std::get<ProjectScanTarget>(scan.target).roots = {home / folder};
        const auto plan = home.plan(scan);
        ASSERT_TRUE(plan) << folder;
        EXPECT_EQ(plan->items.size(), counts ? 1U : 0U) << folder;
        EXPECT_EQ(plan->skipped.size(), 0U) << folder;
    }
}

TEST_F(ProjectScanTest, leavesAProjectWhoseSourcesItCouldNotRead) {
    for (const char* project : {"fine", "folder", "file", "mount", "photos"})
        makeNodeProject(std::string("code/") + project);
    makeAll("code", {"mount/src/mounted", "photos/Family.photoslibrary/a"});
    home.source->onOpen = [](const std::string& path) { return path.ends_with("/folder/src") ? EACCES : 0; };
    home.source->onEntry = [broken = statusOfPath(home / "code/file/src/main.js")->inode](FolderEntry& entry) {
        if (entry.name == "mounted") entry.mountStatus = entryIsMountPoint;
        if (entry.fileID == broken) entry.error = EIO;
    };

    EXPECT_THAT(verdictsOf(rule()), UnorderedElementsAre(Pair("code/fine/node_modules", planned),
                                                         Pair("code/folder/node_modules", "Vostrel could not read"),
                                                         Pair("code/folder/src", "Vostrel could not read"),
                                                         Pair("code/file/node_modules", "Vostrel could not read"),
                                                         Pair("code/file/src/main.js", "Vostrel could not read"),
                                                         Pair("code/mount/node_modules", "on another disk"),
                                                         Pair("code/photos/node_modules", planned)));
}

TEST_F(ProjectScanTest, saysWhereItRanOutOfTime) {
    for (int number = 0; number < 10; ++number)
        makeNodeProject("code/" + std::to_string(number));
    CleanupPlanner planner = home.planner;
    auto seconds = std::make_shared<int>(0);
    planner.clock = [seconds, start = home.now] { return start + std::chrono::seconds(++*seconds); };
    planner.projectScanBudget = 20s;
    planner.helpers = 0;

    const auto plan = planner.plan(rule(), home.now);

    ASSERT_TRUE(plan);
    EXPECT_LT(plan->items.size(), 10U);
    const auto last = std::ranges::find(plan->skipped, home / "code", &SkippedItem::url);
    ASSERT_NE(last, plan->skipped.end());
    EXPECT_EQ(last->refusal, "Vostrel ran out of time looking for projects in ~/code, so it may have missed some.");

    planner.projectScanBudget = 120s;
    planner.timeLimit = -1s;  // no time left to measure anything
    const auto unmeasured = home.verdicts(*planner.plan(rule(), home.now));
    EXPECT_THAT(unmeasured, Contains(Pair("code/3/node_modules", "not checked in time")));
    int asked = 0;
    const auto cancelled = planner.plan(rule(), home.now, [&] { return ++asked > 15; });
    EXPECT_EQ(cancelled.error(), PlanError::of(PlanError::Kind::cancelled));
}

TEST_F(ProjectScanTest, refusesWhatNoProjectScanMayBe) {
    using Kind = PlanError::Kind;
    home.home.makeFolder("code/inner");
    home.home.makeFolder("Library/Developer");
    const std::pair<Kind, std::function<void(RuleFilter&, ProjectScanTarget&)>> cases[] = {
        {Kind::filterNotAllowed, [](RuleFilter& filter, auto&) { filter.minAgeDays = 5; }},
        {Kind::filterNotAllowed, [](RuleFilter&, auto& scan) { scan.untouchedDays = 0; }},
        {Kind::filterNotAllowed, [](RuleFilter&, auto& scan) { scan.kinds.clear(); }},
        {Kind::protectedRoot, [&](RuleFilter&, auto& scan) { scan.roots.push_back(home / "Library/Developer"); }},
        {Kind::overlappingRoots, [&](RuleFilter&, auto& scan) { scan.roots.push_back(home / "code/inner"); }},
        {Kind::rootMissing, [&](RuleFilter&, auto& scan) { scan.roots = {home / "gone"}; }},
    };
    for (const auto& [kind, edit] : cases) {
        Rule edited = rule();
        edit(edited.filter, std::get<ProjectScanTarget>(edited.target));
        const auto plan = home.plan(edited);
        EXPECT_TRUE(!plan && plan.error().kind == kind && !plan.error().sentence.empty()) << static_cast<int>(kind);
    }
    home.planner.volume.fileSystemType = [](int) { return "msdos"; };
    Rule byArrival = rule();
    byArrival.filter.ageBasis = AgeBasis::added;
    EXPECT_TRUE(home.plan(byArrival)) << "a scan does not go by the dates that this disk lacks";
}

TEST_F(ProjectScanTest, tellsAProjectsNewestSourceAgain) {
    makeNodeProject("code/a");
    home.setAge("code/a/src/main.js", days(3));
    const ProjectScanner scanner(home.planner.guards, *home.source, 0);
    const auto found = discover();
    ASSERT_EQ(found.candidates.size(), 1U);

    EXPECT_EQ(scanner.newestSource(home / "code/a", {}, {}), found.candidates[0].newestSource);
    EXPECT_EQ(found.candidates[0].newestSource, home.now - days(3));

    home.setAge("code/a/src/main.js", days(50));
    const auto before = scanner.newestSource(home / "code/a", {}, {}, {home / "code/a"});
    std::filesystem::remove_all(home / "code/a/node_modules");
    EXPECT_NE(scanner.newestSource(home / "code/a", {}, {}), before);
    EXPECT_EQ(scanner.newestSource(home / "code/a", {}, {}, {home / "code/a"}), before);

    home.source->onOpen = [](const std::string& path) { return path.ends_with("/src") ? EIO : 0; };
    EXPECT_EQ(scanner.newestSource(home / "code/a", {}, {}), std::nullopt);
    EXPECT_EQ(scanner.newestSource(home / "gone", {}, {}), std::nullopt);
}

TEST_F(ProjectScanTest, entersNoOtherVolume) {
#ifdef __linux__
    for (const char* project : {"code/a", "code/b", "elsewhere"})
        makeNodeProject(project);
    home.home.makeFolder("code/b/vendor");
    Verdicts said;
    const bool ran = withPrivateMounts([&] {
        for (const auto& [from, to] :
             {std::pair("elsewhere/node_modules", "code/a/node_modules"), {"elsewhere", "code/b/vendor"}})
            ASSERT_EQ(mount((home / from).c_str(), (home / to).c_str(), nullptr, MS_BIND, nullptr), 0);
        said = verdictsOf(rule());
    });
    if (!ran) GTEST_SKIP() << "no mounts of one's own here";
    EXPECT_THAT(said, UnorderedElementsAre(Pair("code/a/node_modules", "on another disk"),
                                           Pair("code/b/node_modules", "on another disk")));
#endif
}

}  // namespace
}  // namespace vostrel
