#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>

#include "finder/FileHasher.h"
#include "finder/FinderListing.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

class FileHasherTest : public testing::Test {
protected:
    [[nodiscard]] HashOutcome hash() const {
        return hasher.hash(file, stamp, {0, stamp.size}, [] { return false; });
    }
    void append(const char* text) const { std::ofstream(file, std::ios::app) << text; }

    TemporaryFolder folder;
    std::filesystem::path file = folder.makeFile("file", std::string(600'000, 'a'));
    FinderStamp stamp = FinderStampReader::read(file)->stamp;
    FileHasher hasher;
};

TEST_F(FileHasherTest, digestsTheBytesThatAreAskedFor) {
    const std::string known = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";
    file = folder.makeFile("abc", "xabcx");
    stamp = FinderStampReader::read(file)->stamp;
    const auto outcome = hasher.hash(file, stamp, {1, 3}, {});
    ASSERT_TRUE(std::holds_alternative<HashedBytes>(outcome));
    EXPECT_EQ(std::get<HashedBytes>(outcome).digest.text(), known);
    EXPECT_EQ(std::get<HashedBytes>(outcome).bytesRead, 3);
}

TEST_F(FileHasherTest, digestsNoFileThatIsNotTheOneThatWasWalked) {
    const auto whole = hash();
    ASSERT_TRUE(std::holds_alternative<HashedBytes>(whole));
    // A reader that gives little at a time changes nothing.
    hasher.reader = [](int open, std::span<std::byte> into, std::int64_t offset) {
        return readAt(open, into.first(std::min<std::size_t>(into.size(), 1'000)), offset);
    };
    EXPECT_EQ(hash(), whole);

    struct Case {
        const char* what;
        std::function<void()> change;
        HashOutcome expected;
    };
    const auto meanwhile = [&](const std::function<void()>& change) {
        hasher.reader = [=](int open, std::span<std::byte> into, std::int64_t offset) {
            if (offset > 0) change();
            return readAt(open, into, offset);
        };
    };
    const Case cases[] = {
        {"grows while it is read", [&] { meanwhile([&] { append("b"); }); }, HashChanged{}},
        {"shrinks while it is read", [&] { meanwhile([&] { ::truncate(file.c_str(), 300'000); }); }, HashChanged{}},
        {"cannot be read on",
         [&] {
             hasher.reader = [](int, std::span<std::byte>, std::int64_t) {
                 errno = EIO;
                 return std::int64_t(-1);
             };
         },
         HashUnreadable{EIO}},
        {"is written to", [&] { append("b"); }, HashChanged{}},
        {"has another date", [&] { ::utimensat(AT_FDCWD, file.c_str(), nullptr, 0); }, HashChanged{}},
        {"has another name", [&] { std::filesystem::create_hard_link(file, folder / "twin"); }, HashChanged{}},
        {"is another of the same size",
         [&] {
             folder.makeFile("other", std::string(600'000, 'a'));
             std::filesystem::rename(folder / "other", file);
         },
         HashChanged{}},
        {"is a link",
         [&] {
             std::filesystem::rename(file, folder / "away");
             std::filesystem::create_symlink(folder / "away", file);
         },
         HashUnreadable{ELOOP}},
        {"is a pipe", [&] { ::mkfifo(file.c_str(), 0600); }, HashChanged{}},
        {"is gone", [] {}, HashUnreadable{ENOENT}},
    };
    for (const Case& tested : cases) {
        std::filesystem::remove(folder / "twin");
        std::filesystem::remove(file);
        const bool isThere = std::string_view(tested.what) != "is gone" && std::string_view(tested.what) != "is a pipe";
        folder.makeFile("file", std::string(600'000, 'a'));
        stamp = FinderStampReader::read(file)->stamp;
        if (!isThere) std::filesystem::remove(file);
        hasher.reader = &readAt;
        tested.change();
        EXPECT_EQ(hash(), tested.expected) << tested.what;
    }
}

}  // namespace
}  // namespace vostrel
