#include <gtest/gtest.h>

#include "rules/CleanupPlan.h"

namespace vostrel {
namespace {

TEST(CleanupPlanTest, countsAndGroupsItsItems) {
    EXPECT_EQ(countedPhrase(SkipReason::symlink, 1), "1 item that is a link");
    EXPECT_EQ(countedPhrase(SkipReason::symlink, 1203), "1,203 items that are links");

    CleanupPlan plan;
    plan.roots.resize(3);
    plan.roots[0].url = "/a/one";
    plan.roots[2].url = "/a/three";
    for (const auto& [path, bytes, root] :
         {std::tuple("/a/three/x", 5, 2U), {"/a/one/y", 7, 0U}, {"/a/three/z", 11, 2U}}) {
        PlannedItem& item = plan.items.emplace_back();
        item.url = path;
        item.bytes = bytes;
        item.rootIndex = root;
    }

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
