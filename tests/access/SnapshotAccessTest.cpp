#include <gtest/gtest.h>

#include <optional>

#include "access/SnapshotAccess.h"
#include "support/PlainGuards.h"

namespace vostrel {
namespace {

using test::guardsOf;
using Reason = UnreadableReason;

TEST(SnapshotAccessTest, opensNothingPrivateForeignOrOfTheSystem) {
    const MountTable mounts({"/", "/System/Volumes/Data", "/System/Volumes/Update", "/System/Volumes/Update/x",
                             "/Users", "/Users/ann/disk", "/Users/ann/disk", "/srv/share"});
    struct Case {
        const char* path;
        std::optional<Reason> with;
        std::optional<Reason> without;  // Full Disk Access
    };
    const auto hidden = Reason::needsFullDiskAccess;
    const auto library = Reason::mediaLibrary;
    const std::optional<Reason> open;
    const Case cases[] = {
        {"/Users/ann", open, open},
        {"/Users/ann/Library/Caches", open, open},
        {"/System/Volumes/Data/users/ANN/library/caches", open, open},
        {"/Users/ann/Documents", open, hidden},
        {"/Users/ann/documents/old/x", open, hidden},
        {"/Users/ann/Documents2", open, open},
        {"/Users/ann/.Trash/x", open, hidden},
        {"/Users/ann/Music/Music/Media", library, library},
        {"/Users/ann/x/Old.MusicLibrary/y", library, library},
        {"/Users/ann/x/Old.photoslibrary/y", open, hidden},
        {"/tmp/Old.tvlibrary", library, library},
        {"/Users/bob", Reason::otherHome, Reason::otherHome},
        {"/Users/bob/x.tvlibrary", Reason::otherHome, Reason::otherHome},
        {"/Users/Shared/x", open, open},
        {"/Users/ann/.vol/1", Reason::systemPlace, Reason::systemPlace},
        {"/Users/ann/disk", Reason::otherDisk, Reason::otherDisk},
        {"/Users/ann/disk/Documents", Reason::otherDisk, Reason::otherDisk},
        {"/Users/ann/disks", open, open},
        {"/srv/share/x", Reason::otherDisk, Reason::otherDisk},
        {"/Volumes/Other/x", Reason::otherDisk, Reason::otherDisk},
        {"/System/Volumes/Update", open, open},
        {"/System/Volumes/Update/x/y", Reason::otherDisk, Reason::otherDisk},
        {"/System/Library", Reason::systemPlace, Reason::systemPlace},
        {"/usr/lib", Reason::systemPlace, Reason::systemPlace},
        {"/data/x", open, open},
        {"relative", Reason::couldNotRead, Reason::couldNotRead},
    };
    for (const auto& [path, with, without] : cases) {
        for (const bool granted : {true, false}) {
            const SnapshotAccess access("/Users/ann", granted, guardsOf("/Users/ann"), mounts);
            EXPECT_EQ(access.decision(path).blockedFor, granted ? with : without) << path << granted;
        }
    }
}

}  // namespace
}  // namespace vostrel
