#include <fmt/format.h>

#include "rules/ArtifactFiles.h"

namespace vostrel::artifacts {

// What Swift's package manager, Xcode and CocoaPods write.

namespace {

// What Git keeps of a working copy that has no commit, change or stash of its own: all objects are the clone's.
const Names copyOfGit{"HEAD",           "config",         "description",   "FETCH_HEAD",
                      "ORIG_HEAD",      "index",          "packed-refs",   "shallow",
                      "branches/",      "hooks/*.sample", "info/exclude",  "logs/HEAD",
                      "logs/refs/**/*", "refs/**/*",      "objects/pack/", "objects/info/alternates"};

Names cloneOfGit() {
    const Names packs{".pack", ".idx", ".rev", ".bitmap", ".keep", ".promisor", ".mtimes"};
    Names clone{"HEAD",
                "config",
                "description",
                "FETCH_HEAD",
                "packed-refs",
                "shallow",
                "branches/",
                "hooks/*.sample",
                "info/exclude",
                "info/refs",
                "logs/HEAD",
                "refs/**/*",
                "objects/" + digits(2) + "/HEX",
                "objects/info/packs",
                "objects/info/commit-graph",
                "objects/info/commit-graphs/*",
                "objects/pack/multi-pack-index"};
    for (const std::string& ending : packs)
        clone.push_back("objects/pack/pack-HEX" + ending);
    return clone;
}

Names fetchedForSwift() {
    const Names binary{"**", "**/*.h", "**/LICENSE*", "**/README*", "**/STEM", "**/_CodeSignature/CodeResources"};
    return joined({{"workspace-state.json", "artifacts/*/*/*.artifactbundle/info.json",
                    "artifacts/*/*/*.artifactbundle/**/bin/WORD"},
                   below({"artifacts/*/*/*.xcframework", "artifacts/*/*/*.artifactbundle"}, binary),
                   below({"checkouts/*/.git"}, copyOfGit),
                   below({"repositories/*"}, cloneOfGit()),
                   below({"prebuilts/**"}, {"*.a", "*.h", "*.json", "*.modulemap", "*.swiftdoc", "*.swiftmodule"})});
}

/// Units and records of an index, "main.o-3J0ABCDEFGHIJ".
Names indexStore(const Names& folders) {
    Names store;
    for (const int length : {10, 11, 12, 13}) {
        const std::string file = "*-" + repeated("[0-9A-Z]", length);
        for (const std::string& each :
             below(folders, {"v[0-9]/units/" + file, "v[0-9]/records/[0-9A-Z][0-9A-Z]/" + file}))
            store.push_back(each);
    }
    return store;
}

const Names moduleCache{"*.pcm", "*.pch", "*.swiftmodule", "*.timestamp", "*.modulevalidation", "modules.idx"};

}  // namespace

Names swiftFiles() {
    const Names modules{"*.swiftmodule", "*.swiftdoc", "*.swiftsourceinfo", "*.swiftinterface", "*.abi.json"};
    const Names compiled = joined({modules,
                                   {"*.o",
                                    "*.d",
                                    "*.dia",
                                    "*.swiftdeps",
                                    "*.swiftdeps~",
                                    "*.priors",
                                    "*.autolink",
                                    "*.bc",
                                    "*.pcm",
                                    "*.pch",
                                    "*-Swift.h",
                                    "*.modulemap",
                                    "*.LinkFileList",
                                    "*.swiftconstvalues",
                                    "output-file-map.json",
                                    "sources",
                                    "Info.plist",
                                    "DerivedSources/resource_bundle_accessor.*",
                                    "DerivedSources/runner.swift",
                                    "DerivedSources/embedded_resources.swift",
                                    "DerivedSources/test_entry_point.swift"}});
    // Resources that were copied into a bundle are told by what compilers do not make.
    const Names build =
        joined({modules,
                below({"*.build", "*.build/**"}, compiled),
                below({"Modules"}, modules),
                below({"ModuleCache/**"}, moduleCache),
                indexStore({"index/store"}),
                {"PRODUCT", "*.a", "*.so", "*.dylib", "*.o", "*.xctest", "*.xctest/**", "*.xctest/**/MacOS/WORD",
                 "*.bundle/**", "*.resources/**", "*.product/*.LinkFileList", "*.derived/*.swift",
                 "*-entitlement.plist", "description.json", "plugin-tools-description.json", "swift-version-WORD.txt",
                 "index/db/**/data.mdb", "index/db/**/lock.mdb"}});
    const Names builds =
        below({"SYSTEM/debug", "SYSTEM/release", "plugins/tools/debug", "plugins/tools/release"}, build);
    return joined({{".lock", "debug", "release", "debug.yaml", "release.yaml", "plugin-tools.yaml", "build.db",
                    "build.db-shm", "build.db-wal", "manifest.db", "plugins/cache/PRODUCT", "plugins/cache/*.dia",
                    "plugins/cache/*-state.json", "plugins/outputs/**/*.swift"},
                   fetchedForSwift(),
                   builds,
                   below({"index-build"}, joined({builds, {"build.db", "manifest.db", "debug", "debug.yaml"}}))});
}

namespace {

Names productsOfXcode() {
    const Names products{"PRODUCT",
                         "*.app/**",
                         "*.appex/**",
                         "*.framework/**",
                         "*.xctest/**",
                         "*.bundle/**",
                         "*.dSYM/**",
                         "*.swiftmodule/**",
                         "*.a",
                         "*.o",
                         "*.dylib",
                         "*.modulemap",
                         "*.app/AppIcon*.png",
                         "*.app/**/AppIcon*.png",
                         "*.app/**/PkgInfo",
                         "*.dSYM/**/DWARF/WORD",
                         "*.framework/**/A/**",
                         "*.framework/**/A/WORD",
                         "*.framework/**/*.h",
                         "*.swiftmodule/**/*.abi.json",
                         "include/**/*.h",
                         "PackageFrameworks/*.framework/**"};
    const Names programs = below({"*.app", "*.appex", "*.framework", "*.xctest", "*.bundle"},
                                 {"**/STEM", "**/MacOS/WORD", "**/_CodeSignature/CodeResources"});
    return joined({{"*.xctestrun"}, below({"*", "*/*"}, joined({products, programs}))});
}

// Of a target, of the whole build, and of headers.
Names intermediatesOfXcode() {
    const Names build{"**",
                      "**/*.h",
                      "**/*.json",
                      "**/*.xml",
                      "**/*.yaml",
                      "**/*_dependency_info.dat",
                      "**/assetcatalog_output/**",
                      "**/assetcatalog_output/**/*.png"};
    const Names derived{"**/DerivedSources/**", "**/DerivedSources/**/*.swift", "**/DerivedSources/**/*.c",
                        "**/DerivedSources/**/*.m"};
    return joined({below({"*.build"}, joined({build, derived})),
                   {"XCBuildData/**", "XCBuildData/build.db", "XCBuildData/**/HEX", "XCBuildData/**/build-request.json",
                    "XCBuildData/**/manifest.json", "XCBuildData/**/target-graph.txt", "XCBuildData/**/task-store",
                    "PrecompiledHeaders/**", "SwiftExplicitPrecompiledModules/**", "*.noindex/**"}});
}

Names logsOfXcode() {
    const Names logs{"Analyze", "Build",        "Debug",   "Install", "Issues",
                     "Launch",  "Localization", "Package", "Run",     "Test"};
    const auto part = [](int count) { return repeated("[0-9A-F]", count); };
    const std::string unique = fmt::format("{}-{}-{}-{}-{}", part(8), part(4), part(4), part(4), part(12));
    const Names results = below({"[BRT]*-20[0-9][0-9].[0-9][0-9].[0-9][0-9]_*.xcresult"},
                                {"Info.plist", "database.sqlite3", "Data/data.0~*", "Data/refs.0~*"});
    return below(logs, joined({{"LogStoreManifest.plist", "Cache.db", unique + ".xcactivitylog"}, results}));
}

}  // namespace

// A project's folder ends in 28 letters.
Names derivedDataFiles() {
    const Names build =
        joined({below({"Intermediates.noindex"}, intermediatesOfXcode()), below({"Products"}, productsOfXcode())});
    const Names project =
        joined({{"info.plist", "Index/PrecompiledHeaders/**/*.pch", "Index.noindex/PrecompiledHeaders/**/*.pch",
                 "SourcePackages/manifest.db", "SourcePackages/plugins/**", "TextIndex/**"},
                below({"Build", "Index.noindex/Build"}, build),
                indexStore({"Index/DataStore", "Index.noindex/DataStore"}),
                below({"Logs"}, logsOfXcode()),
                below({"SourcePackages"}, fetchedForSwift())});
    return joined({project,
                   below({"*-" + repeated("[a-z]", 28)}, project),
                   below({"ModuleCache/**", "ModuleCache.noindex/**"}, moduleCache),
                   {"CompilationCache.noindex/**", "SDKStatCaches.noindex/*.sdkstatcache", "SymbolCache.noindex/**"}});
}

Names podsFiles() {
    return joined({{"Manifest.lock", "*/**", "Headers/Private/**/*.*", "Headers/Public/**/*.*"},
                   below({"Pods.xcodeproj"},
                         {"project.pbxproj", "project.xcworkspace/contents.xcworkspacedata",
                          "project.xcworkspace/xcshareddata/IDEWorkspaceChecks.plist",
                          "project.xcworkspace/xcuserdata/*.xcuserdatad/UserInterfaceState.xcuserstate",
                          "xcshareddata/xcschemes/*.xcscheme", "xcuserdata/*.xcuserdatad/xcschemes/*.xcscheme",
                          "xcuserdata/*.xcuserdatad/xcschemes/xcschememanagement.plist"}),
                   below({"Target Support Files/*"},
                         {"Info.plist", "*-Info.plist", "*-acknowledgements.markdown", "*-acknowledgements.plist",
                          "*-dummy.m", "*-frameworks.sh", "*-prefix.pch", "*-resources.sh", "*-umbrella.h",
                          "*.modulemap", "*.xcconfig", "*.xcfilelist"})});
}

}  // namespace vostrel::artifacts
