#include <gtest/gtest.h>

#include "rules/RuleFilter.h"

namespace vostrel {
namespace {

TEST(RuleFilterTest, takesAChosenFileOnlyWhileNameVolumeAndInodeAgree) {
    RuleFilter filter;
    EXPECT_TRUE(filter.pinsAllow("anything", 1, "VOLUME")) << "no files were chosen";
    filter.pinnedFiles = {{"caf\u00E9", "VOLUME", 7}, {"b", "VOLUME", 8}};
    EXPECT_TRUE(filter.pinsAllow("caf\u00E9", 7, "VOLUME"));
    EXPECT_TRUE(filter.pinsAllow("cafe\u0301", 7, "VOLUME")) << "the same name, decomposed";
    EXPECT_FALSE(filter.pinsAllow("Caf\u00E9", 7, "VOLUME"));
    EXPECT_FALSE(filter.pinsAllow("caf\u00E9", 8, "VOLUME")) << "another chosen file's inode";
    EXPECT_FALSE(filter.pinsAllow("caf\u00E9", 7, "OTHER"));
}

}  // namespace
}  // namespace vostrel
