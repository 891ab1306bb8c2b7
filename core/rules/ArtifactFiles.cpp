#include "rules/ArtifactFiles.h"

#include <fmt/format.h>

namespace vostrel::artifacts {

Names joined(std::initializer_list<Names> lists) {
    Names all;
    for (const Names& list : lists)
        all.insert(all.end(), list.begin(), list.end());
    return all;
}

Names below(const Names& folders, const Names& paths) {
    Names all;
    for (const std::string& folder : folders) {
        for (const std::string& path : paths)
            all.push_back(fmt::format("{}/{}", folder, path));
    }
    return all;
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

const Names documents{
    "*.doc",     "*.docx",   "*.docm",    "*.odt",  "*.ods",      "*.odp",     "*.odg",      "*.rtf",       "*.pages",
    "*.numbers", "*.xls",    "*.xlsx",    "*.xlsm", "*.ppt",      "*.pptx",    "*.tex",      "*.bib",       "*.epub",
    "*.mobi",    "*.djvu",   "*.scriv",   "*.vsd",  "*.vsdx",     "*.xmind",   "*.sketch",   "*.fig",       "*.xd",
    "*.psd",     "*.ai",     "*.indd",    "*.xcf",  "*.kra",      "*.afphoto", "*.afdesign", "*.blend",     "*.stl",
    "*.3mf",     "*.step",   "*.dwg",     "*.dxf",  "*.skp",      "*.ipynb",   "*.pst",      "*.mbox",      "*.kdbx",
    "*.kdb",     "*.heic",   "*.heif",    "*.cr2",  "*.cr3",      "*.nef",     "*.arw",      "*.dng",       "*.orf",
    "*.rw2",     "*.raf",    "*.mov",     "*.avi",  "*.mkv",      "*.m4v",     "*.wmv",      "*.aiff",      "*.logicx",
    "*.band",    "*.als",    "*.dmg",     "*.iso",  "*.appimage", "*.ova",     "*.vmdk",     "*.qcow2",     "*.vdi",
    "*.rar",     "*.bak",    "*.unity",   "*.gpx",  "*.ipa",      "*.aab",     "*.msi",      "*.xcarchive", "id_rsa",
    "id_dsa",    "id_ecdsa", "id_ed25519"};

const Names belongings =
    joined({documents, {"*.pdf",  "*.csv",  "*.tsv",   "*.eml",       "*.ics",    "*.vcf",     "*.jpg",      "*.jpeg",
                        "*.tif",  "*.tiff", "*.raw",   "*.mp3",       "*.m4a",    "*.wav",     "*.flac",     "*.ogg",
                        "*.mp4",  "*.zip",  "*.7z",    "*.tar",       "*.tgz",    "*.tar.*",   "*.exe",      "*.msi",
                        "*.pkg",  "*.deb",  "*.rpm",   "mapping.txt", "*.sqlite", "*.sqlite3", "*.sqlitedb", "*.db",
                        "*.mdf",  "*.mts",  "*.accdb", "*.dat",       "*.sav",    "*.sql",     "*.dump",     ".env",
                        ".env.*", "*.env",  "*.pem",   "*.key",       "*.p12",    "*.pfx",     "*.keystore", "*.jks",
                        "*.gpg",  "*.asc",  "*.sh",    "*.bash",      "*.zsh",    "*.fish",    "*.bat",      "*.ps1",
                        "*.py",   "*.rb",   "*.php",   "*.pl",        "*.lua",    "*.go",      "*.cs",       "*.scala",
                        "*.clj",  "*.hs",   "*.tsx",   "*.jsx",       "*.svelte", "*.astro",   "*.scss",     "*.sass",
                        "*.less", "CNAME"}});

const Names pictures{"*.png", "*.gif", "*.webp", "*.avif", "*.bmp", "*.svg", "*.ico", "*.jp2", "*.jxl"};

const Names secrets{".env", ".env.local", "*.p12", "*.pfx", "*.jks", "*.keystore", "*.gpg"};

const Names writings{"*.md", "*.markdown", "*.mdx", "*.txt", "*.rst", "*.org", "*.adoc"};
const Names byHand{"BARE",   "*.json", "*.yaml", "*.yml",   "*.toml", "*.html", "*.htm",
                   "*.js",   "*.mjs",  "*.css",  "*.xml",   "*.ini",  "*.cfg",  "*.properties",
                   "*.conf", "*.log",  "*.jar",  "*.class", "*.h",    "*.gz"};
const Names sources{"*.swift", "*.c", "*.cc", "*.cpp", "*.cxx", "*.m", "*.mm", "*.java", "*.kt", "*.rs", "*.ts"};

// Tools may put what they like into a folder of theirs in ".cache"; taken are only kinds of file that caches are made
// of, and names of many digits.
Names nodePackages() {
    const Names cached{"*.cache", "*.cjs",         "*.css",  "*.gz",   "*.js",        "*.json",
                       "*.lock",  "*.map",         "*.mjs",  "*.pack", "*.pack.old",  "*.pack.gz.old",
                       "*.sst",   "*.tsbuildinfo", "*.wasm", "HEX",    "HEX.tar.zst", ".*cache"};
    const Names optimised{"_metadata.json", "package.json", "*.js", "*.js.map", "*.css", "*.css.map"};
    return joined({{"[!.]*/**", ".bin/*", ".cache/.*cache", ".vite/vitest/results.json",
                    ".vite/vitest/HEX/results.json", ".vite-temp/*.timestamp-*.mjs"},
                   below({".cache/*/**"}, cached),
                   below({".vite/deps", ".vite/deps_ssr", ".vite/deps_temp_" + digits(8)}, optimised)});
}

Names nextFiles() {
    const Names pages{"*.js",   "*.js.map", "*.mjs",     "*.json", "*.html", "*.rsc",
                      "*.meta", "*.css",    "*.css.map", "*.body", "*.wasm"};
    const Names packs{"*.pack", "*.pack.gz", "*.pack.old", "*.pack.gz.old"};
    const Names media{"*." + digits(8) + ".*", digits(16) + "-s.woff2", digits(16) + "-s.p.woff2"};
    return joined({{"BUILD_ID",
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
                    "cache/.previewinfo",
                    "cache/.rscinfo",
                    "cache/.tsbuildinfo",
                    "cache/eslint/.cache_WORD",
                    "cache/fetch-cache/HEX",
                    "cache/fetch-cache/tags-manifest",
                    "cache/next-babel-loader/*.json",
                    "cache/swc/**/*.wasm",
                    "diagnostics/*.json",
                    "types/**/*.ts",
                    "types/package.json"},
                   below({"build/**"}, {"*.js", "*.js.map", "*.json"}),
                   below({"cache/turbopack/**"}, {"*.sst", "*.meta", "*.del", "CURRENT", "LOG"}),
                   below({"cache/webpack/*"}, packs),
                   below({"cache/images/*"}, {"[0-9]*.[0-9]*.*.webp", "[0-9]*.[0-9]*.*.avif", "[0-9]*.[0-9]*.*.png"}),
                   below({"server/**"}, pages),
                   below({"static/**"}, {"*.js", "*.js.map", "*.css", "*.css.map", "*.json"}),
                   below({"server/static/media", "static/media"}, joined({pages, media}))});
}

Names nuxtFiles() {
    const Names bundled{"*.js",
                        "*.js.map",
                        "*.mjs",
                        "*.mjs.map",
                        "*.cjs",
                        "*.css",
                        "*.css.map",
                        "*.json",
                        "*.html",
                        "*.woff",
                        "*.woff2",
                        "*.ttf",
                        "LICENSES",
                        "*.HASH.svg",
                        "*.HASH.png",
                        "*." + digits(7) + ".svg",
                        "*." + digits(7) + ".png"};
    return joined({{"*.d.ts",
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
                    "components/index.js",
                    "components/plugin.js",
                    "components/nuxt-*.js",
                    "components/nuxt-*.vue",
                    "dev/index.mjs",
                    "dev/index.mjs.map",
                    "manifest/latest.json",
                    "manifest/meta/*.json",
                    "mixins/fetch.client.js",
                    "mixins/fetch.server.js",
                    "schema/nuxt.schema.d.ts",
                    "schema/nuxt.schema.json",
                    "types/**/*.d.ts",
                    "views/app.template.html",
                    "views/error.html"},
                   below({"dist/**"}, bundled)});
}

// Not the folders "doc", "package" and "criterion": what lies there need not come again.
Names cargoFiles() {
    const std::string hash = "*-" + digits(16);
    const Names compiled = {"",     ".d",   ".rlib", ".rmeta", ".a",   ".so", ".dylib", ".dll", ".dll.lib", ".lib",
                            ".exe", ".pdb", ".dwp",  ".wasm",  ".*.o", ".o",  ".bc",    ".ll",  ".s",       ".mir"};
    Names outputs;
    for (const std::string& ending : compiled)
        outputs.push_back(hash + ending);
    Names fingerprints{"invoked.timestamp"};
    for (const std::string target :
         {"lib", "bin", "test", "bench", "example", "dep", "output", "build-script", "run-build-script", "doc"}) {
        fingerprints.push_back(target + "-WORD");
        fingerprints.push_back(target + "-WORD.json");
    }
    // CMake writes there for packages that are built with it.
    const Names scripts{"invoked.timestamp",
                        "output",
                        "root-output",
                        "stderr",
                        "build-script-WORD",
                        "build-script-WORD.exe",
                        "build_script_WORD",
                        "build_script_WORD.d",
                        "build_script_WORD.exe",
                        "build_script_WORD.pdb",
                        "out/**",
                        "out/**/*.h",
                        "out/**/Makefile",
                        "out/**/CMakeCache.txt",
                        "out/**/CMakeFiles/**",
                        "out/**/CMakeFiles/**/*.txt"};
    const Names units{"dep-graph.bin",
                      "dep-graph.part.bin",
                      "query-cache.bin",
                      "work-products.bin",
                      "metadata.rmeta",
                      "*.o",
                      "*.bc",
                      "*.ll",
                      "*.s",
                      "*.dwo"};
    const Names profile = joined({{".cargo-lock", ".cargo-artifact-lock", ".cargo-build-lock", "LIST", "PROGRAM",
                                   "examples/LIST", "examples/PROGRAM", "incremental/*-*/s-*-*.lock"},
                                  below({".fingerprint/" + hash}, fingerprints),
                                  below({"build/" + hash}, scripts),
                                  below({"deps", "examples"}, outputs),
                                  below({"incremental/*-*/s-*-*"}, units)});
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
                       "classes/git.properties",
                       "classes/META-INF/*.kotlin_module",
                       "classes/META-INF/build-info.properties",

                       "classes/META-INF/spring-configuration-metadata.json",
                       "test-classes/**/*.class",
                       "generated-sources/annotations/**/*.java",
                       "generated-test-sources/test-annotations/**/*.java",
                       "maven-archiver/pom.properties",
                       "maven-status/maven-compiler-plugin/**/*.lst",
                       "surefire-reports/TEST-*.xml",
                       "surefire-reports/*.txt",
                       "failsafe-reports/TEST-*.xml",
                       "failsafe-reports/failsafe-summary.xml"};

// Not what is released from it: "distributions", "install", "publications", signed packages and their mappings. Nor
// folders with names that people like, unless the tool's own files are known: "docs", "reports", "scripts".
Names gradleFiles() {
    const Names lookups{
        "*.bin",     "lookups",      "symbols",         "*.tab",          "*.tab.keystream", "*.tab.keystream.len",
        "*.tab.len", "*.tab.values", "*.tab.values.at", "*.tab.values.s", "*.tab_i",         "*.tab_i.len"};
    const Names generated{"*.java", "*.kt", "*.h", "*.class", "*.kotlin_module"};
    return joined({{"classes/**/*.class",
                    "classes/*/*/META-INF/*.kotlin_module",
                    "generated/res/**/*.xml",
                    "intermediates/**",
                    "intermediates/**/*.class",
                    "intermediates/**/*.xml",
                    "intermediates/**/R.jar",
                    "intermediates/**/R.txt",
                    "intermediates/**/annotationProcessors.json",
                    "intermediates/**/classes.jar",
                    "intermediates/**/full.jar",
                    "intermediates/**/navigation.json",
                    "intermediates/**/output-metadata.json",
                    "intermediates/*blame*/**/*.json",
                    "intermediates/**/*-r.txt",
                    "intermediates/*res*/**/drawable*/*.png",
                    "intermediates/*res*/**/mipmap*/*.png",
                    "intermediates/*res*/**/mipmap*/*.webp",
                    "jacoco/*.exec",
                    "libs/*.jar",
                    "outputs/apk/debug/*-debug.apk",
                    "outputs/apk/debug/output-metadata.json",
                    "outputs/logs/manifest-merger-*-report.txt",
                    "reports/problems/problems-report.html",
                    "resources/main/META-INF/build-info.properties",
                    "resources/main/META-INF/gradle-plugins/*.properties",
                    "resources/main/git.properties",
                    "test-results/*/TEST-*.xml",
                    "tmp/*ar/MANIFEST.MF",
                    "tmp/compile*/previous-compilation-data.bin",
                    "tmp/compile*/compileTransaction/**/*.class",
                    "tmp/compile*/compileTransaction/**/*.class.uniqueId[0-9]*"},
                   below({"generated/ap_generated_sources/**", "generated/source/**", "generated/sources/**",
                          "tmp/kapt3/**", "tmp/kotlin-classes/**"},
                         generated),
                   below({"kotlin/compile*Kotlin*/**", "kspCaches/**"}, lookups),
                   below({"reports/tests/*"}, {"index.html", "classes/*.html", "packages/*.html", "css/base-style.css",
                                               "css/style.css", "js/report.js"}),
                   below({"test-results/*/binary"}, {"*.bin", "*.bin.idx"})});
}

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
        const std::string file = "*-" + repeated("[0-9a-z]", length);
        for (const std::string& each :
             below(folders, {"v[0-9]/units/" + file, "v[0-9]/records/[0-9a-z][0-9a-z]/" + file}))
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
    const std::string unique = digits(8) + "-" + digits(4) + "-" + digits(4) + "-" + digits(4) + "-" + digits(12);
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

Names environmentFiles() {
    return joined({{"pyvenv.cfg", ".gitignore", "CACHEDIR.TAG", ".lock", "lib64", "include/", "include/python3.[0-9]/",
                    "include/python3.[0-9][0-9]/"},
                   below({"bin"}, {"python", "python3", "python3.[0-9]", "python3.[0-9][0-9]", "pip", "pip3",
                                   "pip3.[0-9]", "pip3.[0-9][0-9]", "pip-3.[0-9]", "pip-3.[0-9][0-9]", "activate",
                                   "activate.bat", "activate.csh", "activate.fish", "activate.nu", "activate.ps1",
                                   "activate_this.py", "deactivate.bat", "pydoc.bat"}),
                   below({"lib/python3.[0-9]/site-packages", "lib/python3.[0-9][0-9]/site-packages"},
                         {"_virtualenv.pth", "_virtualenv.py", "distutils-precedence.pth",
                          "__pycache__/_virtualenv.cpython-3*.pyc"})});
}

const Names hashedBundles{"*-HASH.css", "*-HASH.css.map", "*-HASH.js", "*-HASH.js.map", "*-HASH.woff", "*-HASH.woff2"};

}  // namespace vostrel::artifacts
