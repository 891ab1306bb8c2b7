#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <limits>

#include "stores/CodableFileStore.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

struct Note {
    std::string text = "default";
    Date date;
    double weight = 1;
    friend bool operator==(const Note&, const Note&) = default;
};

}  // namespace

template <>
struct JSONFields<Note> {
    static constexpr std::array list{
        jsonField<&Note::text>("text"),
        jsonField<&Note::date>("date"),
        jsonField<&Note::weight>("weight"),
    };
};

namespace {

const Date march3 = Date::fromSeconds(1'740'992'707);
const std::string asideName = "note.corrupt-20250303-090507.json";
const Note oldNote{"old", march3, 0.5};
const Note newNote{std::string(1000, 'n'), march3, 2};
const std::string goodText = R"({"date":"2025-03-03T09:05:07.000Z","text":"old","weight":0.5})";

class UmaskOf {
public:
    explicit UmaskOf(mode_t mask) : previous(::umask(mask)) {}
    UmaskOf(const UmaskOf&) = delete;
    UmaskOf& operator=(const UmaskOf&) = delete;
    ~UmaskOf() { ::umask(previous); }

private:
    mode_t previous;
};

mode_t modeOf(const fs::path& path) {
    struct stat facts{};
    EXPECT_EQ(::lstat(path.c_str(), &facts), 0);
    return facts.st_mode & 07777U;
}

class CodableFileStoreTest : public testing::Test {
protected:
    using Store = CodableFileStore<Note>;

    [[nodiscard]] Store store(FileWriter writer = systemWrite, std::optional<std::uint16_t> mode = std::nullopt,
                              const std::string& name = "note.json") const {
        return {folder.path(), name, JSONLayout::compact, mode, [] { return Note{}; }, std::move(writer)};
    }

    TemporaryFolder folder;
};

TEST_F(CodableFileStoreTest, startsWithTheDefaultWhereThereIsNoFile) {
    for (const auto& directory : {folder.path(), folder / "absent/deeper"}) {
        const Store absent(directory, "note.json", JSONLayout::pretty, std::nullopt, [] { return Note{}; });
        const auto result = absent.load(march3);
        EXPECT_EQ(result.value, Note{});
        EXPECT_FALSE(result.recoveredFromCorruption);
        EXPECT_EQ(result.movedAsideTo, std::nullopt);
    }
    EXPECT_THAT(folder.names(), IsEmpty());
}

TEST_F(CodableFileStoreTest, movesADamagedFileAsideWhateverTheDamage) {
    const fs::path file = folder / "note.json";
    const fs::path target = folder.makeFile("elsewhere/target.json", goodText);
    const std::vector<std::pair<std::string, std::function<void()>>> damages{
        {"a link to a good file", [&] { fs::create_symlink(target, file); }},
        {"a broken link", [&] { fs::create_symlink(folder / "nowhere", file); }},
        {"a folder", [&] { folder.makeFile("note.json/inside"); }},
        {"a pipe that nobody writes to", [&] { ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0); }},
        {"empty", [&] { folder.makeFile("note.json", ""); }},
        {"not JSON", [&] { folder.makeFile("note.json", "text=old"); }},
        {"not UTF-8", [&] { folder.makeFile("note.json", "{\"text\":\"\xFF\"}"); }},
        {"nested too deeply", [&] { folder.makeFile("note.json", std::string(1'000'000, '[')); }},
        {"another shape", [&] { folder.makeFile("note.json", "[]"); }},
        {"a wrong date", [&] { folder.makeFile("note.json", R"({"date":"then","text":"old","weight":1})"); }},
        {"followed by something", [&] { folder.makeFile("note.json", goodText + "}"); }},
        {"far too large", [&] { fs::resize_file(folder.makeFile("note.json"), 8ULL << 30U); }},
        {"a file of zeros", [&] { folder.makeFile("note.json", std::string(goodText.size(), '\0')); }},
    };
    for (const auto& [what, damage] : damages) {
        damage();
        const auto before = fs::symlink_status(file).type();
        const auto result = store().load(march3);
        EXPECT_EQ(result.value, Note{}) << what;
        EXPECT_TRUE(result.recoveredFromCorruption) << what;
        EXPECT_EQ(result.movedAsideTo, folder / asideName) << what;
        EXPECT_THAT(folder.names(), ElementsAre("elsewhere", asideName)) << what;
        EXPECT_EQ(fs::symlink_status(folder / asideName).type(), before) << what;
        fs::remove_all(folder / asideName);
    }
    EXPECT_EQ(folder.read("elsewhere/target.json"), goodText);
}

TEST_F(CodableFileStoreTest, movesAFileAsideThatIsCutAnywhere) {
    for (std::size_t length = 0; length < goodText.size(); ++length) {
        folder.makeFile("note.json", goodText.substr(0, length));
        const auto result = store().load(march3);
        EXPECT_TRUE(result.recoveredFromCorruption) << length;
        EXPECT_EQ(folder.read(asideName), goodText.substr(0, length));
        fs::remove(folder / asideName);
    }
    folder.makeFile("note.json", goodText);
    EXPECT_EQ(store().load(march3).value, oldNote);
}

TEST_F(CodableFileStoreTest, numbersDamagedFilesOfOneSecondUpTo99) {
    fs::create_symlink("nowhere", folder / asideName);
    for (int attempt = 1; attempt < 100; ++attempt) {
        folder.makeFile("note.json", "damaged");
        const auto name = "note.corrupt-20250303-090507-" + std::to_string(attempt) + ".json";
        EXPECT_EQ(store().load(march3).movedAsideTo, folder / name);
    }
    folder.makeFile("note.json", "damaged once more");
    const auto result = store().load(march3);
    EXPECT_TRUE(result.recoveredFromCorruption);
    EXPECT_EQ(result.movedAsideTo, std::nullopt);
    EXPECT_EQ(folder.read("note.json"), "damaged once more");
    EXPECT_EQ(folder.names().size(), 101U);
}

TEST_F(CodableFileStoreTest, leavesADamagedFileThatCannotBeMoved) {
    const std::string longName = std::string(245, 'n') + ".json";  // its dated name would be too long
    folder.makeFile(longName, "damaged");
    folder.makeFile("file", "no folder");
    const Store belowAFile(folder / "file", "note.json", JSONLayout::pretty, std::nullopt, [] { return Note{}; });
    for (const auto& result : {store(systemWrite, std::nullopt, longName).load(march3), belowAFile.load(march3)}) {
        EXPECT_EQ(result.value, Note{});
        EXPECT_TRUE(result.recoveredFromCorruption);
        EXPECT_EQ(result.movedAsideTo, std::nullopt);
    }
    EXPECT_EQ(folder.read(longName), "damaged");
    EXPECT_EQ(folder.read("file"), "no folder");
}

TEST_F(CodableFileStoreTest, readsFilesLongerThanItsBuffer) {
    const Note longNote{std::string(200'000, 'x'), march3, 1};
    ASSERT_TRUE(store().save(longNote));
    EXPECT_EQ(store().load(march3).value, longNote);
}

/// Both ways to write: with the umask's bits, and with exact ones.
class CodableFileStoreSaveTest : public CodableFileStoreTest,
                                 public testing::WithParamInterface<std::optional<std::uint16_t>> {
protected:
    [[nodiscard]] Store writingBy(FileWriter writer) const { return store(std::move(writer), GetParam()); }
};

TEST_P(CodableFileStoreSaveTest, makesTheFolderAndReplacesTheWholeFile) {
    const Store deep(folder / "a/b", "note.json", JSONLayout::pretty, GetParam(), [] { return Note{}; });
    ASSERT_TRUE(deep.save(newNote));
    ASSERT_TRUE(deep.save(oldNote));
    EXPECT_EQ(folder.read("a/b/note.json"),
              "{\n  \"date\": \"2025-03-03T09:05:07.000Z\",\n  \"text\": \"old\",\n  \"weight\": 0.5\n}");
    EXPECT_THAT(folder.names("a/b"), ElementsAre("note.json"));
    EXPECT_EQ(deep.load(march3).value, oldNote);
}

TEST_P(CodableFileStoreSaveTest, writesTheWholeFileThroughShortAndInterruptedWrites) {
    int calls = 0;
    const auto save = writingBy([&](std::int32_t descriptor, const std::byte* bytes, std::size_t) -> ssize_t {
        if (++calls % 3 == 0) {
            errno = EINTR;
            return -1;
        }
        return systemWrite(descriptor, bytes, 1);
    });
    ASSERT_TRUE(save.save(oldNote));
    EXPECT_EQ(folder.read("note.json"), goodText);
    EXPECT_THAT(folder.names(), ElementsAre("note.json"));
}

TEST_P(CodableFileStoreSaveTest, leavesTheOldFileWhenAWriteFails) {
    folder.makeFile("note.json", goodText);
    struct Fault {
        ssize_t result;
        int code;
        int reported;
    };
    for (const auto fault : {Fault{-1, ENOSPC, ENOSPC}, Fault{-1, EIO, EIO}, Fault{0, 0, EIO}}) {
        for (int failing = 1; failing <= 5; ++failing) {
            int calls = 0;
            const auto save = writingBy([&](std::int32_t descriptor, const std::byte* bytes, std::size_t) -> ssize_t {
                if (++calls < failing) return systemWrite(descriptor, bytes, 100);
                errno = fault.code;
                return fault.result;
            });
            const auto saved = save.save(newNote);
            ASSERT_FALSE(saved);
            EXPECT_EQ(calls, failing);
            EXPECT_EQ(saved.error().failure, StoreError::Failure::fileWriteUnknown);
            EXPECT_EQ(std::get<SystemError>(saved.error().cause).code, fault.reported);
            EXPECT_EQ(folder.read("note.json"), goodText);
            EXPECT_THAT(folder.names(), ElementsAre("note.json"));
        }
    }
}

TEST_P(CodableFileStoreSaveTest, leavesTheOldFileWhenTheProgramIsKilledWhileItWrites) {
    folder.makeFile("note.json", goodText);
    for (const int lastCall : {1, 2, 7}) {
        const pid_t child = ::fork();
        if (child == 0) {
            int calls = 0;
            std::ignore = writingBy([&](std::int32_t descriptor, const std::byte* bytes, std::size_t) {
                              if (++calls == lastCall) ::_exit(9);
                              return systemWrite(descriptor, bytes, 10);
                          }).save(newNote);
            ::_exit(0);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_EQ(WEXITSTATUS(status), 9);
        EXPECT_EQ(folder.read("note.json"), goodText);
    }
    EXPECT_EQ(folder.names().size(), 4U) << "each leaves its temporary file";
    EXPECT_EQ(store().load(march3).value, oldNote);
    ASSERT_TRUE(store().save(newNote));
    EXPECT_EQ(store().load(march3).value, newNote);
}

TEST_P(CodableFileStoreSaveTest, saysWhichStepFailed) {
    using enum StoreError::Failure;
    folder.makeFile("file", "no folder");
    folder.makeFile("folder/note.json/inside");
    const auto storeIn = [&](const fs::path& directory, const std::string& name) {
        return Store(directory, name, JSONLayout::pretty, GetParam(), [] { return Note{}; });
    };
    struct Case {
        Store store;
        Note note;
        StoreError::Failure failure;
        std::string description;
    };
    const std::string longName(240, 'n');
    const std::vector<Case> cases{
        {storeIn(folder / "file/deeper", "note.json"), oldNote, directoryNotCreated,
         "Could not create " + (folder / "file/deeper").native() + ": Not a directory"},
        {storeIn(folder / "file", "note.json"), oldNote, directoryNotCreated,
         "Could not create " + (folder / "file").native() + ": Not a directory"},
        {storeIn(folder / "folder", "note.json"), Note{"\xFF", march3, 1}, encoding,
         "text: JSON has no text that is not UTF-8."},
        {storeIn(folder / "folder", "note.json"), Note{"x", march3, std::numeric_limits<double>::infinity()}, encoding,
         "weight: JSON has no such number."},
        {storeIn(folder / "folder", longName), oldNote, fileWriteNoPermission,
         "Could not create a file in " + (folder / "folder").native() + ": File name too long"},
        {storeIn(folder / "folder", "note.json"), oldNote, fileWriteUnknown,
         "Could not replace " + (folder / "folder/note.json").native() + ": Is a directory"},
    };
    for (const auto& [failing, note, failure, description] : cases) {
        const auto saved = failing.save(note);
        ASSERT_FALSE(saved) << description;
        EXPECT_EQ(saved.error().failure, failure) << description;
        EXPECT_EQ(saved.error().description(), description);
    }
    EXPECT_EQ(folder.read("file"), "no folder");
    EXPECT_THAT(folder.names(), ElementsAre("file", "folder"));
    EXPECT_THAT(folder.names("folder"), ElementsAre("note.json"));
    EXPECT_THAT(folder.names("folder/note.json"), ElementsAre("inside"));
}

INSTANTIATE_TEST_SUITE_P(BothWays, CodableFileStoreSaveTest,
                         testing::Values(std::nullopt, std::optional<std::uint16_t>(0600)),
                         [](const auto& way) { return way.param ? "withExactMode" : "withUmask"; });

TEST_F(CodableFileStoreTest, givesTheFileExactlyTheModeItWasMadeFor) {
    for (const mode_t mask : {0077U, 0000U}) {
        const UmaskOf umask(mask);
        ASSERT_TRUE(store(systemWrite, 0600).save(oldNote));
        EXPECT_EQ(modeOf(folder / "note.json"), 0600U);
        ASSERT_TRUE(store(systemWrite, 0644).save(oldNote));
        EXPECT_EQ(modeOf(folder / "note.json"), 0644U);
    }
}

TEST_F(CodableFileStoreTest, keepsTheModeOfAFileThatItReplaces) {
    const UmaskOf umask(0027);
    ASSERT_TRUE(store().save(oldNote));
    EXPECT_EQ(modeOf(folder / "note.json"), 0640U);
    fs::permissions(folder / "note.json", fs::perms(0604));
    ASSERT_TRUE(store().save(newNote));
    EXPECT_EQ(modeOf(folder / "note.json"), 0604U);
}

TEST_F(CodableFileStoreTest, replacesALinkAndNotWhatItPointsTo) {
    folder.makeFile("target", "kept");
    folder.makeLink("note.json", folder / "target");
    ASSERT_TRUE(store().save(oldNote));
    EXPECT_EQ(folder.read("target"), "kept");
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(folder / "note.json")));
}

}  // namespace
}  // namespace vostrel
