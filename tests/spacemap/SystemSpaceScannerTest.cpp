#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "spacemap/SystemSpaceScanner.h"
#include "support/FakeFolderTree.h"
#include "support/PlainGuards.h"

namespace vostrel {
namespace {

using test::FakeFolderTree;
using test::guardsOf;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t gigabyte = 1'000'000'000;

class FixedCapacity final : public VolumeCapacityReading {
public:
    std::expected<VolumeCapacity, VolumeCapacityError> read(const std::filesystem::path&,
                                                            ImportantFigure) const override {
        return capacity;
    }

    VolumeCapacity capacity{100 * gigabyte, 40 * gigabyte};
};

class SystemSpaceScannerTest : public testing::Test {
protected:
    SystemSpaceScannerTest() {
        for (const char* file : {"/disk/home/ann/a", "/disk/home/bob/b", "/disk/usr/c", "/disk/share/d", "/mnt/e/f",
                                 "/mnt/other/g", "/home/bob/h"})
            tree->file(file, gigabyte);
        scanner.mounts = [] { return MountTable({"/", "/disk", "/disk/share", "/mnt/e", "/mnt/e/deep"}); };
        scanner.diskRoot = "/disk";
        scanner.source = tree;
    }

    ScanResult scan(const SpaceScanTarget& target) { return scanner.scan(target, nullptr, {}); }
    static std::vector<std::string> namesAt(const SpaceTree& map, SpaceTree::Index index = 0) {
        std::vector<std::string> names;
        for (const auto child : map.children(index))
            names.push_back(map.at(child).name + (map.at(child).isMarker() ? "?" : ""));
        return names;
    }

    std::shared_ptr<FakeFolderTree> tree = std::make_shared<FakeFolderTree>();
    FixedCapacity capacity;
    FixedFullDiskAccess access{true};
    SystemSpaceScanner scanner{
        .home = "/home/ann", .guards = guardsOf("/home/ann"), .fullDiskAccess = access, .capacityReader = capacity};
};

TEST_F(SystemSpaceScannerTest, mapsTheDiskButNoOther) {
    const ScanResult disk = scan(SpaceScanTarget::choose("/", "Startup disk"));
    EXPECT_EQ(disk.tree.root().name, "Startup disk");
    EXPECT_THAT(namesAt(disk.tree), ElementsAre("home", "usr", "share?"));
    ASSERT_TRUE(disk.hidden());
    EXPECT_EQ(disk.hidden()->measured, 3 * gigabyte);
    EXPECT_EQ(disk.hidden()->hidden, 57 * gigabyte);
    EXPECT_TRUE(disk.hidden()->measuredIsComplete);
}

TEST_F(SystemSpaceScannerTest, mapsAChosenFolderWhereverItLies) {
    EXPECT_THAT(namesAt(scan(SpaceScanTarget::folder("/mnt/e/")).tree), ElementsAre("f"));
    EXPECT_THAT(namesAt(scan(SpaceScanTarget::folder("/mnt")).tree), ElementsAre("other", "e?"));
    EXPECT_EQ(scan(SpaceScanTarget::folder("/home/bob")).tree.problem,
              SpaceTree::RootProblem(Unreadable{UnreadableReason::otherHome}));
    tree->alias("/link/x", "/home/bob");
    tree->folder("/link/x");
    EXPECT_EQ(scan(SpaceScanTarget::folder("/link/x")).tree.problem,
              SpaceTree::RootProblem(Unreadable{UnreadableReason::otherHome}));
    EXPECT_FALSE(scan(SpaceScanTarget::folder("/mnt/e")).hidden());
    EXPECT_EQ(scan(SpaceScanTarget::folder("/mnt/e")).tree.root().name, "e");
    EXPECT_EQ(scanner.waitLimit(), std::chrono::seconds(720));
}

TEST(HiddenSpaceTest, accountsForWhatNoFolderShows) {
    struct Case {
        std::int64_t measured;
        std::optional<std::int64_t> important;
        std::optional<std::int64_t> swap;
        std::int64_t hidden;
        std::optional<std::int64_t> purgeable;
        bool mayBeInFolders;
        std::optional<std::int64_t> other;
        bool countsShared;
    };
    const std::optional<std::int64_t> unknown;
    const Case cases[] = {
        {45, unknown, unknown, 15, unknown, false, 15, false},
        {45, 50, 2, 15, 10, false, 3, false},
        {45, 50, 9, 15, 10, false, 0, false},
        {55, 50, 2, 5, 10, true, unknown, false},
        {45, 30, unknown, 15, 0, false, 15, false},
        {60, unknown, unknown, 0, unknown, false, 0, false},
        {61, unknown, unknown, 0, unknown, false, unknown, true},
    };
    for (const auto& each : cases) {
        SpaceNode root;
        root.bytes = each.measured;
        const auto space = HiddenSpace::of(root, {100, 40, each.important}, {each.swap, unknown});
        EXPECT_EQ(space.used, 60);
        EXPECT_EQ(space.hidden, each.hidden) << each.measured;
        EXPECT_EQ(space.purgeable, each.purgeable);
        EXPECT_EQ(space.purgeableMayBeInFolders, each.mayBeInFolders);
        EXPECT_EQ(space.other, each.other);
        EXPECT_EQ(space.measuredMayCountSharedSpace, each.countsShared);
        EXPECT_THAT(space.sentences(SystemKind::macOS), testing::Not(IsEmpty()));
    }
}

}  // namespace
}  // namespace vostrel
