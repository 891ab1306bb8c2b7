#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <tuple>

#include "rules/ArtifactLayout.h"

namespace vostrel {
namespace {

using Names = std::vector<std::string>;

/// Those of the files, side by side, that may lie there.
std::set<std::string> held(const Names& layout, Names files, const Names& folders = {}) {
    const auto compiled = ArtifactLayout::compile(layout, {});
    std::ranges::sort(files);
    std::set<std::string> held;
    for (const std::string& file : files) {
        if (compiled.top().holdsFile(file, {files, folders})) held.insert(file);
    }
    return held;
}

TEST(ArtifactLayoutTest, tellsNamesByTheirCharactersAndByWhatLiesBesideThem) {
    const Names ofBundles{"index-HASH.js", "HEX", "HEX.js", "lib-WORD", "PRODUCT"};
    const Names ofPrograms{"PROGRAM", "LIST"};
    // A layout, names that lie side by side and are a tool's, and names that are not.
    const std::tuple<Names, Names, Names> rows[] = {
        {ofBundles,
         {"index-B8sKq2xZ.js", "index--x9Qa0bT.js", "index-3f2a91bc.js", "index-5LKJ2XQ3.js", "0123456789abcdef",
          "0123456789abcdef0.js", "lib-shop_2", "shop", "tool"},
         {"index-20240131.js", "index-24-01-31.js", "index-mainpage.js", "index-v1-final.js", "index-my_notes.js",
          "index-Be done .js", "Index-B8sKq2xZ.js", "0123456789abcde", "0123456789ABCDEF", "0123456789abcdef.png",
          "g0123456789abcdef", "lib-", "lib-my notes.txt", "lib-shop.txt.json", "shop.product", "notes", "Shop",
          "tool-state.json"}},
        {ofPrograms,
         {"app", "app.d", "app.pdb", "lib.d", "lib.rlib", "lib.so", "web.d", "web.wasm"},
         {"app.json", "app.toml", "app.key", "app.d.txt", "game.d", "game.cfg", "notes", "lib.so.1"}},
    };
    for (const auto& [layout, made, others] : rows) {
        Names files = made;
        files.insert(files.end(), others.begin(), others.end());
        EXPECT_THAT(held(layout, files, {"shop.product"}), testing::UnorderedElementsAreArray(made));
    }
}

TEST(ArtifactLayoutTest, givesAFolderThatIsNamedToNoPattern) {
    const auto layout = ArtifactLayout::compile(Names{"*/*.md", "Headers/*.h", "**/any/*.c", "**/*.txt"}, {});
    const auto isHeld = [&](std::string_view folder, std::string_view file) {
        return layout.top().within(folder).holdsFile(file, {});
    };
    EXPECT_TRUE(isHeld("other", "a.md") && isHeld("other", "a.txt") && isHeld("Headers", "a.h") &&
                isHeld("any", "a.c"));
    EXPECT_FALSE(isHeld("Headers", "a.md") || isHeld("Headers", "a.txt") || isHeld("any", "a.h"));
}

}  // namespace
}  // namespace vostrel
