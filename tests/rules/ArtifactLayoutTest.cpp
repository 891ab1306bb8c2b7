#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

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

TEST(ArtifactLayoutTest, tellsHashesFromWordsVersionsAndDates) {
    // As the tools write them: in base 64, in hexadecimal digits, in capitals.
    const Names hashes{"B8sKq2xZ", "D_tn1WmV", "4sK0E3Uq", "C5pvF9Zr", "CZzuUOcT", "-x9Qa0bT", "3f2a91bc",
                       "9c07e5d1", "0be4f83a", "5LKJ2XQ3", "FFHMD2TL", "QZ2YKE5J", "BqM_wQ7m", "DDt8DcHj"};
    const Names words{"24-01-31", "20240131", "2024_Jan", "2024Jan1", "31Dec-24", "v1-final", "final_v2", "v2-page3",
                      "no-cache", "old_copy", "new-page", "my_notes", "mainpage", "release1", "homePage", "HomePage",
                      "LastGood", "MyNovel1", "HTMLPage", "VERSION2", "OLD-COPY", "option-b", "part-a-1", "p5sketch",
                      "i18nmain", "draft-2b", "2024-01b", "2ndDraft", "2nddraft", "________", "a b c d1"};
    Names files;
    for (const auto* list : {&hashes, &words}) {
        for (const std::string& text : *list)
            files.push_back("index-" + text + ".js");
    }
    std::set<std::string> expected;
    for (const std::string& hash : hashes)
        expected.insert("index-" + hash + ".js");

    EXPECT_THAT(held({"*-HASH.js"}, files), testing::ContainerEq(expected));
}

TEST(ArtifactLayoutTest, tellsPartsOfNamesByTheirCharacters) {
    const Names made{"0123456789abcdef", "0123456789abcdef0.js", "lib-shop_2", "shop", "tool"};
    const Names others{"0123456789abcde",
                       "0123456789ABCDEF",
                       "0123456789abcdef.png",
                       "g0123456789abcdef",
                       "lib-",
                       "lib-my notes.txt",
                       "lib-shop.txt.json",
                       "shop.product",
                       "notes"};
    Names files = made;
    files.insert(files.end(), others.begin(), others.end());
    files.emplace_back("tool-state.json");

    EXPECT_THAT(held({"HEX", "HEX.js", "lib-WORD", "PRODUCT"}, files, {"shop.product"}),
                testing::UnorderedElementsAreArray(made));
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

TEST(ArtifactLayoutTest, letsOnlyProgramsAndTheirListsLieSideBySide) {
    const Names made{"app", "app.d", "app.pdb", "lib.d", "lib.rlib", "lib.so", "web.d", "web.wasm"};
    const Names others{"app.json", "app.toml", "app.key", "app.d.txt", "game.d", "game.cfg", "notes", "lib.so.1"};
    Names files = made;
    files.insert(files.end(), others.begin(), others.end());

    EXPECT_THAT(held({"PROGRAM", "LIST"}, files), testing::UnorderedElementsAreArray(made));
}

}  // namespace
}  // namespace vostrel
