#include <fmt/format.h>

#include "rules/ArtifactFiles.h"

namespace vostrel::artifacts {

// What package managers and bundlers for JavaScript write.

// Tools may put what they like into a folder of theirs in ".cache"; taken are only kinds of file that caches are made
// of, and names of many digits.
Names nodePackages() {
    const Names cached{"*.cache", "*.cjs",         "*.css",  "*.gz",   "*.js",        "*.json",
                       "*.lock",  "*.map",         "*.mjs",  "*.pack", "*.pack.old",  "*.pack.gz.old",
                       "*.sst",   "*.tsbuildinfo", "*.wasm", "HEX",    "HEX.tar.zst", ".*cache"};
    const Names optimised{"_metadata.json", "package.json", "*.js", "*.js.map", "*.css", "*.css.map"};
    return joined({{"[!.]*/**", ".astro/data-store.json", ".bin/*", ".cache/.*cache", ".vite/vitest/results.json",
                    ".vite/vitest/HEX/results.json", ".vite-temp/*.timestamp-*.mjs"},
                   below({".cache/WORD/**"}, cached),
                   below({".vite/deps", ".vite/deps_ssr", ".vite/deps_temp_" + digits(8)}, optimised)});
}

Names nextFiles() {
    const Names pages{"*.js",   "*.js.map", "*.mjs",     "*.json", "*.html", "*.rsc",
                      "*.meta", "*.css",    "*.css.map", "*.body", "*.wasm"};
    const Names packs{"*.pack", "*.pack.gz", "*.pack.old", "*.pack.gz.old"};
    const Names media{"*." + digits(8) + ".*", digits(16) + "-s.woff2", digits(16) + "-s.p.woff2"};
    const Names files =
        joined({{"BUILD_ID",
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
    return joined({files, below({"dev"}, files), {"dev/logs/next-development.log"}});
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

Names hashedBundles() {
    Names hashed;
    for (const char* ending : {"js", "js.map", "css", "css.map", "woff", "woff2", "ttf", "otf", "eot", "wasm", "svg",
                               "png", "gif", "webp", "avif", "ico", "jpg", "jpeg"})
        hashed.push_back(fmt::format("*-HASH.{}", ending));
    return hashed;
}

}  // namespace vostrel::artifacts
