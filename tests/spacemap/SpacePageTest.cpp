#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "spacemap/NodeSentences.h"
#include "spacemap/SampleTree.h"
#include "spacemap/SpacePage.h"

namespace vostrel {
namespace {

using namespace sample;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

TEST(SpacePageTest, showsEveryNameAsText) {
    const std::string remarks[] = {"</script><b>remark"};
    const std::string page = spacePage(
        treeOf("/<data>", folder("<data>", {file("</script><script>stop()", 7), file("\xff\u202E\"{{map}}", 5)})),
        remarks);
    EXPECT_THAT(page, HasSubstr("\"\\u003c/script>\\u003cscript>stop()\""));
    EXPECT_THAT(page, HasSubstr(R"("\\xff\\u{202e}\"{{map}}")"));
    for (const char* markup : {"<data>", "<script>stop", "<b>remark", "\u202E"})
        EXPECT_THAT(page, Not(HasSubstr(markup)));
}

TEST(SpacePageTest, staysSmallForTheLargestMap) {
    std::vector<Branch> folders;
    for (int each = 0; each < 1250; ++each) {
        std::vector<Branch> files;
        for (int number = 0; number < 47; ++number)
            files.push_back(file("a name of usual length " + std::to_string(number), 1'234'567'890));
        folders.push_back(folder("folder " + std::to_string(each), std::move(files)));
    }
    EXPECT_LT(spacePage(treeOf("/", folder("", std::move(folders))), {}).size(), 5'000'000U);
}

TEST(NodeSentencesTest, sayWhatIsMissingAndWhy) {
    SpaceNode node;
    EXPECT_THAT(unmeasuredSentences(node), testing::IsEmpty());
    node.unreadableCount = 1203;
    node.notMeasuredCount = 1;
    node.leftOutLibraries = 1;
    node.stopped = true;
    EXPECT_THAT(unmeasuredSentences(node),
                ElementsAre("1,202 places in it could not be read.",
                            "1 place in it was left out: other disks, other accounts' folders and system folders are "
                            "not measured.",
                            "Vostrel does not open the Music and TV libraries: what they hold is not counted.",
                            "The scan ended before it had seen all of this."));
    EXPECT_THAT(unmeasuredSentences(marker("x", UnreadableReason::tooDeep).node), ElementsAre("Too deep to measure."));
}

}  // namespace
}  // namespace vostrel
