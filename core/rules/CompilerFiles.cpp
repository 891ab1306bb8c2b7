#include "rules/ArtifactFiles.h"

namespace vostrel::artifacts {

// What Cargo, Maven and Gradle write.

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

}  // namespace vostrel::artifacts
