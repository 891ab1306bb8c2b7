#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cerrno>
#include <set>
#include <sstream>
#include <tuple>

#include "platform/OwnedDescriptor.h"
#include "stores/LineFile.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

namespace fs = std::filesystem;

struct LineFileTest : testing::Test {
    TemporaryFolder folder;
    LineFile file{.path = folder / "log/days/a.jsonl"};

    [[nodiscard]] std::string content() const { return folder.read("log/days/a.jsonl"); }
};

TEST_F(LineFileTest, addsLinesToAFileThatIsTheUsersAlone) {
    int synced = 0;
    file.sync = [&](int opened) {
        ++synced;
        EXPECT_EQ(content(), synced == 1 ? "one\n" : "one\ntwo\n") << "synced after it is written";
        return syncFile(opened);
    };
    ASSERT_TRUE(file.append("one"));
    ASSERT_TRUE(file.append("two"));
    EXPECT_EQ(synced, 2);
    EXPECT_EQ(file.read(), "one\ntwo\n");
    EXPECT_EQ(fs::status(file.path).permissions(), fs::perms(0600));
    ASSERT_TRUE(file.remove());
    EXPECT_THAT(folder.names("log/days"), testing::IsEmpty());
}

TEST_F(LineFileTest, keepsEveryOtherLineReadableWhenOneIsTornOrCannotBeWritten) {
    folder.makeFile("log/days/a.jsonl", "one\nhalf a li");
    ASSERT_TRUE(file.append("two"));
    EXPECT_EQ(content(), "one\nhalf a li\ntwo\n") << "the next line begins on a new one";

    LineFile slow = file;
    slow.writer = [calls = 0](std::int32_t descriptor, const std::byte* bytes, std::size_t) mutable -> ssize_t {
        errno = EINTR;
        return ++calls % 2 == 0 ? -1 : systemWrite(descriptor, bytes, 1);
    };
    ASSERT_TRUE(slow.append("three"));
    const std::string before = "one\nhalf a li\ntwo\nthree\n";
    EXPECT_EQ(content(), before);

    for (int failing = 1; failing <= 3; ++failing) {
        LineFile full = file;
        full.writer = [calls = 0, failing](std::int32_t descriptor, const std::byte* bytes,
                                           std::size_t) mutable -> ssize_t {
            if (++calls < failing) return systemWrite(descriptor, bytes, 2);
            errno = ENOSPC;
            return -1;
        };
        EXPECT_EQ(full.append("lost").error(), (SystemError{ENOSPC, "write", file.path}));
        EXPECT_EQ(content(), before) << "cut off again";
    }
    LineFile unsynced = file;
    unsynced.sync = [](int) { return std::unexpected(EIO); };
    EXPECT_FALSE(unsynced.append("lost"));
    EXPECT_EQ(content(), before);
}

TEST_F(LineFileTest, writesToNothingButARegularFile) {
    folder.makeFile("target", "kept");
    folder.makeLink("link", folder / "target");
    folder.makeFolder("folder");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    for (const auto& [name, code] :
         {std::pair("link", ELOOP), {"folder", EISDIR}, {"pipe", EINVAL}, {"target/a", EEXIST}}) {
        const auto appended = LineFile{folder / name}.append("line");
        ASSERT_FALSE(appended) << name;
        EXPECT_EQ(appended.error().code, code) << name;
    }
    EXPECT_EQ(folder.read("target"), "kept");
}

TEST_F(LineFileTest, isNotRemovedWhileSomebodyAppends) {
    ASSERT_TRUE(file.append("one"));
    const OwnedDescriptor appending(::open(file.path.c_str(), O_RDWR | O_CLOEXEC));
    ASSERT_EQ(::flock(appending.get(), LOCK_EX), 0);
    EXPECT_EQ(file.remove().error().code, EWOULDBLOCK);
    EXPECT_EQ(content(), "one\n");
}

/// Appends until one is killed in the middle of its last line.
[[noreturn]] void appendLines(LineFile file, int process, int count) {
    file.sync = [](int) { return std::expected<void, int>(); };
    for (int line = 0; line < count; ++line)
        std::ignore = file.append(std::to_string(process) + ":" + std::to_string(line) + std::string(500, '.'));
    file.writer = [](std::int32_t descriptor, const std::byte* bytes, std::size_t size) -> ssize_t {
        std::ignore = systemWrite(descriptor, bytes, size / 2);
        ::_exit(0);
    };
    std::ignore = file.append("torn");
    ::_exit(1);
}

TEST_F(LineFileTest, takesWholeLinesFromSeveralProgramsAtOnce) {
    constexpr int processes = 4;
    constexpr int lines = 150;
    std::vector<pid_t> children;
    std::set<std::string> wanted;
    for (int process = 0; process < processes; ++process) {
        children.push_back(::fork());
        if (children.back() == 0) appendLines(file, process, lines);
        for (int line = 0; line < lines; ++line)
            wanted.insert(std::to_string(process) + ":" + std::to_string(line) + std::string(500, '.'));
    }
    for (const pid_t child : children) {
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    std::set<std::string> found;
    int torn = 0;
    std::istringstream text(content());
    for (std::string line; std::getline(text, line);) {
        if (std::string("torn").starts_with(line))
            ++torn;
        else
            EXPECT_TRUE(found.insert(line).second) << line;
    }
    EXPECT_EQ(found, wanted);
    EXPECT_EQ(torn, processes);
}

}  // namespace
}  // namespace vostrel
