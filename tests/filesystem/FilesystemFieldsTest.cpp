#include <gtest/gtest.h>

#include <cerrno>
#include <limits>

#include "filesystem/FilesystemFields.h"
#include "stores/JSONCoding.h"

namespace vostrel {
namespace {

template <class Value>
Decoded<Value> read(std::string_view text) {
    return JSONCoding::decoder().decode<Value>(text);
}

/// The value is written as this text, and read from it again.
template <class Value>
void expectStored(const Value& value, std::string_view text) {
    EXPECT_EQ(JSONCoding::encoder(JSONLayout::compact).encode(value), text);
    EXPECT_EQ(read<Value>(text), value) << text;
}

TEST(FilesystemFieldsTest, storesIdentitiesAndMeasurementsThatAreNotNegative) {
    expectStored(FileIdentity{-5, std::numeric_limits<std::uint64_t>::max()},
                 R"({"device":-5,"inode":18446744073709551615})");
    expectStored(RootIdentity{"A-B", 7}, R"({"inode":7,"volumeUUID":"A-B"})");

    const WalkTotals totals{1, 2, 3, UnreadableReason::tooDeep, 4, 5, 6, true};
    expectStored(totals, R"({"allocatedBytes":1,"files":2,"leftOutLibraries":4,"linksSkipped":5,"otherVolumes":6,)"
                         R"("stopped":true,"unreadableFolders":3,"unreadableReason":"tooDeep"})");
    expectStored(MeasuredSize(totals), R"({"bytes":1,"files":2,"leftOutLibraries":4,"stopped":true,)"
                                       R"("unreadableFolders":3,"unreadableReason":"tooDeep"})");
    const std::string sound = R"({"bytes":0,"files":0,"leftOutLibraries":0,"stopped":false,"unreadableFolders":0})";
    expectStored(MeasuredSize(), sound);
    for (const std::string key : {"bytes", "files", "leftOutLibraries", "unreadableFolders"}) {
        std::string text = sound;
        text.insert(text.find("\"" + key + "\":") + key.size() + 3, "-1");
        EXPECT_EQ(read<MeasuredSize>(text).error().description, MeasuredSize::DecodeError::negative) << text;
    }
}

TEST(FilesystemFieldsTest, tellsTheReasonFromTheSystemsError) {
    using enum UnreadableReason;
    for (const bool fullDiskAccess : {false, true}) {
        EXPECT_EQ(unreadableReasonOf(EACCES, fullDiskAccess), noPermission);
        EXPECT_EQ(unreadableReasonOf(EPERM, fullDiskAccess), fullDiskAccess ? couldNotRead : needsFullDiskAccess);
        EXPECT_EQ(unreadableReasonOf(EDEADLK, fullDiskAccess), couldNotRead);
    }
    expectStored(mediaLibrary, R"("mediaLibrary")");
    EXPECT_EQ(read<UnreadableReason>(R"("a later one")"), unknown);
}

}  // namespace
}  // namespace vostrel
