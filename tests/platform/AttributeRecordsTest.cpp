#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "platform/AttributeRecords.h"
#include "support/Rounds.h"

namespace vostrel {
namespace {

using testing::ElementsAre;

const AttributeRequest lean = attributeRequest(ListingDetail::sizes);
const AttributeRequest rich = [] {
    AttributeRequest request = attributeRequest(ListingDetail::facts);
    request.file |= attribute::fileLength;
    request.extended = attribute::extendedPrivateSize | attribute::extendedCloneID | attribute::extendedCloneCount;
    return request;
}();

/// A record put together by hand: every value at the offset where the system's documents have it.
class Record {
public:
    Record(std::size_t fixedPart, const AttributeRequest& returned) : bytes(fixedPart) {
        put(4, returned.common);
        put(12, returned.folder);
        put(16, returned.file);
        put(20, returned.extended);
    }

    template <class Value>
    Record& put(std::size_t offset, Value value) {
        std::memcpy(bytes.data() + offset, &value, sizeof value);
        return *this;
    }
    Record& putDate(std::size_t offset, std::int64_t seconds) {
        return put(offset, seconds).put(offset + 8, std::int64_t{5});
    }
    /// Puts the reference at `offset` and the text behind all that is there, after a gap, and ends the record.
    std::vector<std::byte> named(std::size_t offset, std::string_view name, std::size_t gap = 0) {
        put(offset, static_cast<std::int32_t>(bytes.size() + gap - offset));
        put(offset + 4, static_cast<std::uint32_t>(name.size() + 1));
        bytes.resize(bytes.size() + gap, std::byte{0xAA});
        for (const char letter : name)
            bytes.push_back(static_cast<std::byte>(letter));
        bytes.push_back(std::byte{0});
        put(0, static_cast<std::uint32_t>(bytes.size()));
        return bytes;
    }

private:
    std::vector<std::byte> bytes;
};

Record leanFile() {
    return Record(56, {lean.common & ~attribute::error, 0, lean.file, 0})
        .put<std::uint32_t>(32, 1)
        .put<std::uint64_t>(36, 0x1234567890)
        .put<std::uint32_t>(44, 3)
        .put<std::int64_t>(48, 8192);
}

Record leanFolder(std::uint32_t mountStatus) {
    return Record(48, {lean.common & ~attribute::error, lean.folder, 0, 0})
        .put<std::uint32_t>(32, 2)
        .put<std::uint64_t>(36, 77)
        .put(44, mountStatus);
}

Record failed(int error) {
    return Record(36, {attribute::returnedSet | attribute::error | attribute::name, 0, 0, 0}).put(24, error);
}

class Entries final : public EntrySink {
public:
    void entry(const FolderEntry& entry) override {
        names.emplace_back(entry.name);
        list.push_back(entry);
        list.back().name = {};
    }
    std::vector<std::string> names;
    std::vector<FolderEntry> list;
};

std::expected<void, int> readAll(const std::vector<std::byte>& buffer, std::size_t records,
                                 const AttributeRequest& request, Entries& entries) {
    // A copy of exactly this size, so that a byte too many is seen by the address sanitizer.
    const auto exact = std::make_unique<std::byte[]>(buffer.size());
    std::ranges::copy(buffer, exact.get());
    return readAttributeRecords({exact.get(), buffer.size()}, records, request, entries);
}

/// The only entry of a buffer.
FolderEntry readOne(const std::vector<std::byte>& record, const AttributeRequest& request) {
    Entries entries;
    EXPECT_TRUE(readAll(record, 1, request, entries).has_value());
    EXPECT_THAT(entries.names, ElementsAre("name"));
    return entries.list.empty() ? FolderEntry() : entries.list.front();
}

int errorOf(const std::vector<std::byte>& buffer, std::size_t records = 1) {
    Entries entries;
    const auto read = readAll(buffer, records, lean, entries);
    return read ? 0 : read.error();
}

std::vector<std::byte> operator+(std::vector<std::byte> left, const std::vector<std::byte>& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

TEST(AttributeRecordsTest, readsWhatSizesNeed) {
    const auto buffer = leanFile().named(24, "a file", 12) + leanFolder(entryTriggersMount).named(24, "a folder") +
                        failed(EACCES).named(28, "refused") + leanFile().named(24, ".") + leanFile().named(24, "..");
    Entries entries;
    ASSERT_TRUE(readAll(buffer, 5, lean, entries).has_value());
    EXPECT_THAT(entries.names, ElementsAre("a file", "a folder", "refused"));
    const auto& file = entries.list[0];
    EXPECT_EQ(file.type, EntryType::file);
    EXPECT_EQ(file.fileID, 0x1234567890);
    EXPECT_EQ(file.linkCount, 3);
    EXPECT_EQ(file.allocated, 8192);
    EXPECT_EQ(file.error, 0);
    const auto& folder = entries.list[1];
    EXPECT_EQ(folder.type, EntryType::folder);
    EXPECT_EQ(folder.fileID, 77);
    EXPECT_EQ(folder.mountStatus, entryTriggersMount);
    EXPECT_EQ(entries.list[2].error, EACCES);
    EXPECT_EQ(entries.list[2].type, EntryType::none);
}

TEST(AttributeRecordsTest, readsWhatFactsNeedAndStepsOverTheRest) {
    Record base = Record(140, {rich.common & ~attribute::error, 0, rich.file, rich.extended})
                      .put<std::int32_t>(32, -7)
                      .put<std::uint32_t>(36, 1)
                      .putDate(40, 1'000)
                      .putDate(56, 2'000)
                      .put<std::uint32_t>(72, 0x4000'0020)
                      .put<std::uint64_t>(76, 99)
                      .putDate(84, 3'000);
    const auto check = [](const FolderEntry& entry) {
        EXPECT_EQ(entry.device, -7);
        EXPECT_EQ(entry.modified, Date::fromSeconds(1'000, 5));
        EXPECT_EQ(entry.changed, Date::fromSeconds(2'000, 5));
        EXPECT_EQ(entry.added, Date::fromSeconds(3'000, 5));
        EXPECT_TRUE(entry.isDataless);
        EXPECT_EQ(entry.fileID, 99);
    };
    Record file = base;
    file.put<std::uint32_t>(100, 2).put<std::int64_t>(104, 512);
    const FolderEntry fileEntry = readOne(file.named(24, "name"), rich);
    check(fileEntry);
    EXPECT_EQ(fileEntry.linkCount, 2);
    EXPECT_EQ(fileEntry.allocated, 512);

    // A folder has its mount status where a file has its link count, and after it the extended group.
    Record folder = base;
    folder.put(12, rich.folder).put(16, std::uint32_t{0}).put<std::uint32_t>(36, 2).put<std::uint32_t>(100, 1);
    const FolderEntry folderEntry = readOne(folder.named(24, "name"), rich);
    check(folderEntry);
    EXPECT_EQ(folderEntry.mountStatus, entryIsMountPoint);
    EXPECT_EQ(folderEntry.allocated, 0);

    folder.put(16, rich.file);  // what no folder has is not read, whatever the record says
    EXPECT_EQ(readOne(folder.named(24, "name"), rich).linkCount, 1);
}

TEST(AttributeRecordsTest, movesFieldsUpWhereOthersAreAbsent) {
    Record noNumber = Record(48, {lean.common & ~(attribute::error | attribute::fileID), 0, lean.file, 0})
                          .put<std::uint32_t>(32, 5)
                          .put<std::uint32_t>(36, 4)
                          .put<std::int64_t>(40, 1024);
    const FolderEntry entry = readOne(noNumber.named(24, "name"), lean);
    EXPECT_EQ(entry.type, EntryType::link);
    EXPECT_EQ(entry.fileID, 0);
    EXPECT_EQ(entry.linkCount, 4);
    EXPECT_EQ(entry.allocated, 1024);

    // With an error word that says "none", everything stands four bytes further down.
    Record packed = Record(60, {lean.common, 0, lean.file, 0})
                        .put<std::uint32_t>(36, 1)
                        .put<std::uint64_t>(40, 6)
                        .put<std::uint32_t>(48, 1)
                        .put<std::int64_t>(52, 2048);
    EXPECT_EQ(readOne(packed.named(28, "name"), lean).allocated, 2048);

    Record undated = Record(64, {attribute::name | attribute::objectType | attribute::modified, 0, 0, 0})
                         .put<std::uint32_t>(32, 2)
                         .putDate(36, 9);
    const FolderEntry folder = readOne(undated.named(24, "name"), rich);
    EXPECT_EQ(folder.modified, Date::fromSeconds(9, 5));
    EXPECT_EQ(folder.added, std::nullopt);

    // Bits that nobody asked for stand for nothing that is there.
    Record boastful = leanFile();
    boastful.put<std::uint32_t>(4, 0xFFFF'FFFF & ~attribute::error).put<std::uint32_t>(16, 0xFFFF'FFFF);
    EXPECT_EQ(readOne(boastful.named(24, "name"), lean).allocated, 8192);

    Record kindless = Record(32, {attribute::returnedSet | attribute::name, 0, 0, 0});
    EXPECT_EQ(readOne(kindless.named(24, "name"), lean).error, EIO);
}

TEST(AttributeRecordsTest, readsNothingBeyondARecordOrTheBuffer) {
    const auto first = leanFile().named(24, "first");
    const auto buffer = first + leanFolder(0).named(24, "second") + failed(EPERM).named(28, "third");
    EXPECT_EQ(errorOf(buffer, 3), 0);
    EXPECT_EQ(errorOf(buffer, 4), EIO) << "a record more than there are bytes for";
    for (std::size_t cut = 0; cut < buffer.size(); ++cut) {
        auto shortened = buffer;
        shortened.resize(cut);
        EXPECT_EQ(errorOf(shortened, 3), EIO) << cut;
    }
    for (std::uint32_t length = 0; length < first.size(); ++length) {
        auto shortened = buffer;
        std::memcpy(shortened.data(), &length, sizeof length);
        EXPECT_EQ(errorOf(shortened, 1), EIO) << length;
    }

    auto most = leanFile().named(24, "name");
    most.resize(131'072);
    const std::uint32_t beyond = 131'073;
    std::memcpy(most.data(), &beyond, sizeof beyond);
    EXPECT_EQ(errorOf(most), EIO);
}

TEST(AttributeRecordsTest, refusesNamesThatAreNone) {
    const auto named = [](std::int32_t offset, std::uint32_t length) {
        auto bytes = leanFile().named(24, "name");
        std::memcpy(bytes.data() + 24, &offset, sizeof offset);
        std::memcpy(bytes.data() + 28, &length, sizeof length);
        return bytes;
    };
    EXPECT_EQ(errorOf(named(32, 5)), 0);
    EXPECT_EQ(errorOf(named(32, 4)), EIO) << "not closed by a zero";
    EXPECT_EQ(errorOf(named(32, 6)), EIO) << "a byte beyond the record";
    EXPECT_EQ(errorOf(named(32, 0)), EIO);
    EXPECT_EQ(errorOf(named(32, 0xFFFF'FFFF)), EIO);
    EXPECT_EQ(errorOf(named(37, 1)), EIO);
    EXPECT_EQ(errorOf(named(-25, 4)), EIO) << "before the record";
    EXPECT_EQ(errorOf(named(INT32_MAX, 1)), EIO);
    EXPECT_EQ(errorOf(named(INT32_MIN, 1)), EIO);
    EXPECT_EQ(errorOf(leanFile().named(24, "")), EIO);
    EXPECT_EQ(errorOf(leanFile().named(24, "a/b")), EIO);
}

TEST(AttributeRecordsTest, survivesAnyBytes) {
    std::mt19937 random(7);
    const auto sound = leanFile().named(24, "first") + leanFolder(1).named(24, "second", 4);
    for (int round = 0; round < test::rounds(2'000); ++round) {
        auto damaged = sound;
        for (auto flips = 1 + random() % 4; flips > 0; --flips)
            damaged[random() % damaged.size()] = static_cast<std::byte>(random());
        const int error = errorOf(damaged, 2);
        EXPECT_TRUE(error == 0 || error == EIO);
    }
}

}  // namespace
}  // namespace vostrel
