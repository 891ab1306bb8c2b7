#include <gtest/gtest.h>

#include "rules/CleanupPlan.h"

namespace vostrel {
namespace {

TEST(CleanupPlanTest, saysWhyItemsAreLeftOut) {
    struct Row {
        SkipReason reason;
        const char* phrase;
        const char* one;
        const char* several;
    };
    const Row table[] = {
        {SkipReason::symlink, "that is a link", "1 item that is a link", "3 items that are links"},
        {SkipReason::otherVolume, "on another disk", "1 item on another disk", "3 items on another disk"},
        {SkipReason::timedOut, "not checked in time", "1 item Vostrel could not check in time",
         "3 items Vostrel could not check in time"},
        {SkipReason::protectedPlace, "Vostrel never removes", "1 item Vostrel never removes",
         "3 items Vostrel never removes"},
        {SkipReason::changedWhileChecking, "changed while Vostrel was checking",
         "1 item that changed while Vostrel was checking it", "3 items that changed while Vostrel was checking them"},
        {SkipReason::noToolSignature, "not recognized as a tool's folder",
         "1 item that does not look like a tool made it", "3 items that do not look like a tool made them"},
    };
    for (const Row& row : table) {
        EXPECT_EQ(phrase(row.reason), row.phrase);
        EXPECT_EQ(countedPhrase(row.reason, 1), row.one);
        EXPECT_EQ(countedPhrase(row.reason, 3), row.several);
    }
}

TEST(CleanupPlanTest, groupsItsItemsByRoot) {
    CleanupPlan plan;
    plan.roots.resize(3);
    plan.roots[0].url = "/a/one";
    plan.roots[2].url = "/a/three";
    const auto add = [&](const char* path, std::int64_t bytes, std::size_t root) {
        PlannedItem& item = plan.items.emplace_back();
        item.url = path;
        item.bytes = bytes;
        item.rootIndex = root;
    };
    add("/a/three/x", 5, 2);
    add("/a/one/y", 7, 0);
    add("/a/three/z", 11, 2);

    const auto groups = plan.groups();
    ASSERT_EQ(groups.size(), 2);
    EXPECT_EQ(groups[0].title, "one");
    EXPECT_EQ(groups[0].items.size(), 1);
    EXPECT_EQ(groups[1].id, 2);
    EXPECT_EQ(groups[1].base, "/a/three");
    EXPECT_EQ(groups[1].items.at(1).url, "/a/three/z");
    EXPECT_EQ(plan.totalBytes(), 23);
}

}  // namespace
}  // namespace vostrel
