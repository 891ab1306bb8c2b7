#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <random>
#include <utility>
#include <vector>

#include "platform/AttributeRecords.h"
#include "support/Rounds.h"

namespace vostrel {
namespace {

using testing::ElementsAre;
using Bytes = std::vector<std::byte>;

const AttributeRequest lean = attributeRequest(ListingDetail::sizes);
const AttributeRequest rich = attributeRequest(ListingDetail::everything);
constexpr std::uint32_t noError = ~attribute::error;

template <class Value>
void write(Bytes& bytes, std::size_t offset, Value value) {
    std::memcpy(bytes.data() + offset, &value, sizeof value);
}

/// A record put together by hand: every value at the offset where the system's documents have it.
class Record {
public:
    Record(std::size_t fixedPart, const AttributeRequest& returned) : bytes(fixedPart) {
        put(4, returned.common).put(12, returned.folder).put(16, returned.file).put(20, returned.extended);
    }

    template <class Value>
    Record& put(std::size_t offset, Value value) {
        write(bytes, offset, value);
        return *this;
    }
    Record& putDate(std::size_t offset, std::int64_t seconds) {
        return put(offset, seconds).put(offset + 8, std::int64_t{5});
    }
    /// The whole record: the reference at `offset`, and the text behind all that is there, after a gap.
    [[nodiscard]] Bytes named(std::size_t offset, std::string_view name, std::size_t gap = 0) const {
        Bytes whole = bytes;
        write(whole, offset, static_cast<std::int32_t>(bytes.size() + gap - offset));
        write(whole, offset + 4, static_cast<std::uint32_t>(name.size() + 1));
        whole.resize(bytes.size() + gap, std::byte{0xAA});
        for (const char letter : name)
            whole.push_back(static_cast<std::byte>(letter));
        whole.push_back(std::byte{0});
        write(whole, 0, static_cast<std::uint32_t>(whole.size()));
        return whole;
    }

private:
    Bytes bytes;
};

Record leanFile() {
    return Record(56, {lean.common & noError, 0, lean.file, 0})
        .put(32, 1)
        .put(36, std::uint64_t{0x1234567890})
        .put(44, 3)
        .put(48, std::int64_t{8192});
}

Record leanFolder(std::uint32_t mountStatus) {
    return Record(48, {lean.common & noError, lean.folder, 0, 0})
        .put(32, 2)
        .put(36, std::uint64_t{77})
        .put(44, mountStatus);
}

Record failed(int error) {
    return Record(36, {attribute::returnedSet | attribute::error | attribute::name, 0, 0, 0}).put(24, error);
}

class Entries final : public EntrySink {
public:
    void entry(const FolderEntry& entry) override {
        std::string text = fmt::format("{}: type {} id {} links {} bytes {} mount {} error {}", entry.name,
                                       std::to_underlying(entry.type), entry.fileID, entry.linkCount, entry.allocated,
                                       entry.mountStatus, entry.error);
        if (entry.modified != Date()) {
            text += fmt::format(" device {} modified {} changed {}", entry.device, entry.modified.nanoseconds(),
                                entry.changed.nanoseconds());
        }
        if (entry.added) text += fmt::format(" added {}", entry.added->nanoseconds());
        if (entry.cloneID) {
            text += fmt::format(" length {} clone {} of {} own {}", entry.length, *entry.cloneID, *entry.cloneRefCount,
                                *entry.privateBytes);
        }
        texts.push_back(text + (entry.isDataless ? " dataless" : ""));
    }
    std::vector<std::string> texts;
};

int errorOf(const Bytes& buffer, std::size_t records, const AttributeRequest& request, Entries& entries) {
    // A copy of exactly this size, so that a byte too many is seen by the address sanitizer.
    const auto exact = std::make_unique<std::byte[]>(buffer.size());
    std::ranges::copy(buffer, exact.get());
    const auto read = readAttributeRecords({exact.get(), buffer.size()}, records, request, entries);
    return read ? 0 : read.error();
}

int errorOf(const Bytes& buffer, std::size_t records = 1) {
    Entries entries;
    return errorOf(buffer, records, lean, entries);
}

std::vector<std::string> read(const Bytes& buffer, const AttributeRequest& request, std::size_t records = 1) {
    Entries entries;
    EXPECT_EQ(errorOf(buffer, records, request, entries), 0);
    return entries.texts;
}

Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

TEST(AttributeRecordsTest, readsWhatSizesNeed) {
    const Bytes buffer = leanFile().named(24, "a file", 12) + leanFolder(entryTriggersMount).named(24, "a folder") +
                         failed(EACCES).named(28, "refused") + leanFile().named(24, ".") + leanFile().named(24, "..");
    EXPECT_THAT(read(buffer, lean, 5), ElementsAre("a file: type 1 id 78187493520 links 3 bytes 8192 mount 0 error 0",
                                                   "a folder: type 2 id 77 links 1 bytes 0 mount 2 error 0",
                                                   "refused: type 0 id 0 links 1 bytes 0 mount 0 error 13"));
}

TEST(AttributeRecordsTest, readsEverythingThatItIsAskedFor) {
    Record file = Record(140, {rich.common & noError, 0, rich.file, rich.extended})
                      .put(32, -7)
                      .put(36, 1)
                      .putDate(40, 1)
                      .putDate(56, 2)
                      .put(72, 0x4000'0020)
                      .put(76, std::uint64_t{99})
                      .putDate(84, 3);
    // A folder has its mount status where a file has its link count, and after it the extended group.
    Record folder = file;
    folder.put(12, rich.folder).put(16, std::uint32_t{0}).put(36, 2).put(100, 1);
    file.put(100, 2).put(104, std::int64_t{512}).put(112, std::int64_t{4321});
    for (Record* record : {&file, &folder}) {
        const std::size_t extended = record == &file ? 120 : 104;
        record->put(extended, std::int64_t{11}).put(extended + 8, std::uint64_t{12}).put(extended + 16, 13);
    }
    const auto facts = [](const std::string& length) {
        return " error 0 device -7 modified 1000000005 changed 2000000005 added 3000000005 " + length +
               " clone 12 of 13 own 11 dataless";
    };
    EXPECT_THAT(read(file.named(24, "name"), rich),
                ElementsAre("name: type 1 id 99 links 2 bytes 512 mount 0" + facts("length 4321")));
    EXPECT_THAT(read(folder.named(24, "name"), rich),
                ElementsAre("name: type 2 id 99 links 1 bytes 0 mount 1" + facts("length 0")));
}

TEST(AttributeRecordsTest, movesFieldsUpWhereOthersAreAbsent) {
    // With an error word that says "none", everything stands four bytes further down.
    const auto packed = Record(60, {lean.common, 0, lean.file, 0})
                            .put(36, 1)
                            .put(40, std::uint64_t{6})
                            .put(48, 1)
                            .put(52, std::int64_t{2048});
    EXPECT_THAT(read(packed.named(28, "name"), lean),
                ElementsAre("name: type 1 id 6 links 1 bytes 2048 mount 0 error 0"));

    const auto kindless = Record(32, {attribute::returnedSet | attribute::name, 0, 0, 0});
    EXPECT_THAT(read(kindless.named(24, "name"), lean),
                ElementsAre("name: type 0 id 0 links 1 bytes 0 mount 0 error 5"));
}

TEST(AttributeRecordsTest, readsNothingBeyondARecordOrTheBuffer) {
    const Bytes first = leanFile().named(24, "first");
    const Bytes buffer = first + leanFolder(0).named(24, "second") + failed(EPERM).named(28, "third");
    EXPECT_EQ(errorOf(buffer, 3), 0);
    EXPECT_EQ(errorOf(buffer, 4), EIO) << "a record more than there are bytes for";
    for (std::size_t cut = 0; cut < buffer.size(); ++cut)
        EXPECT_EQ(errorOf(Bytes(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(cut)), 3), EIO) << cut;
    for (std::uint32_t length = 0; length < first.size(); ++length) {
        Bytes shortened = buffer;
        write(shortened, 0, length);
        EXPECT_EQ(errorOf(shortened), EIO) << length;
    }
    for (const char* name : {"", "a/b"})
        EXPECT_EQ(errorOf(leanFile().named(24, name)), EIO) << name;
    const auto cramped = Record(36, {lean.common & noError, 0, lean.file, 0}).put(32, 1);
    EXPECT_EQ(errorOf(cramped.named(24, "x") + first), EIO) << "values beyond the record's end";
}

TEST(AttributeRecordsTest, survivesAnyBytes) {
    std::mt19937 random(7);
    const Bytes sound = leanFile().named(24, "first") + leanFolder(1).named(24, "second", 4);
    for (int round = 0; round < test::rounds(2'000); ++round) {
        Bytes damaged = sound;
        for (auto flips = 1 + random() % 4; flips > 0; --flips)
            damaged[random() % damaged.size()] = static_cast<std::byte>(random());
        const int error = errorOf(damaged, 2);
        EXPECT_TRUE(error == 0 || error == EIO);
    }
}

}  // namespace
}  // namespace vostrel
