#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <limits>
#include <map>
#include <span>

#include "stores/CodableFileStore.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

using Note = std::map<std::string, double>;
using Store = CodableFileStore<Note>;

const Date march3 = Date::fromSeconds(1'740'992'707);
const std::string asideName = "note.corrupt-20250303-090507.json";
const Note standIn{{"default", 1}};
const Note oldNote{{"old", 0.5}};
const Note newNote{{std::string(200'000, 'n'), 2}};  // longer than what is read or written at once
const std::string oldText = R"({"old":0.5})";

class CodableFileStoreTest : public testing::Test {
protected:
    [[nodiscard]] static Store storeIn(const fs::path& directory, const std::string& name = "note.json") {
        return {directory, name, JSONLayout::pretty, std::nullopt, [] { return standIn; }};
    }
    [[nodiscard]] Store store(FileWriter writer = systemWrite, std::optional<std::uint16_t> mode = std::nullopt) const {
        return {folder.path(), "note.json", JSONLayout::compact, mode, [] { return standIn; }, std::move(writer)};
    }
    void expectDefault(const FileLoadResult<Note>& loaded, const std::optional<fs::path>& aside) const {
        EXPECT_EQ(loaded.value, standIn);
        EXPECT_TRUE(loaded.recoveredFromCorruption);
        EXPECT_EQ(loaded.movedAsideTo, aside);
    }

    TemporaryFolder folder;
};

TEST_F(CodableFileStoreTest, movesADamagedFileAsideWhateverTheDamage) {
    const fs::path file = folder / "note.json";
    const fs::path target = folder.makeFile("elsewhere/target.json", oldText);
    const auto holds = [&](std::string text) {
        return [this, text = std::move(text)] { folder.makeFile("note.json", text); };
    };
    const std::pair<const char*, std::function<void()>> damages[] = {
        {"a link to a good file", [&] { fs::create_symlink(target, file); }},
        {"a broken link", [&] { fs::create_symlink(folder / "nowhere", file); }},
        {"a folder", [&] { folder.makeFile("note.json/inside"); }},
        {"a pipe that nobody writes to", [&] { ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0); }},
        {"far too large", [&] { fs::resize_file(folder.makeFile("note.json"), 8ULL << 30U); }},
        {"not UTF-8", holds("{\"\xFF\":1}")},
        {"nested too deeply", holds(std::string(1'000'000, '['))},
        {"another shape", holds("[]")},
        {"followed by something", holds(oldText + "}")},
        {"a file of zeros", holds(std::string(oldText.size(), '\0'))},
    };
    for (const auto& [what, damage] : damages) {
        SCOPED_TRACE(what);
        damage();
        const auto before = fs::symlink_status(file).type();
        expectDefault(store().load(march3), folder / asideName);
        EXPECT_THAT(folder.names(), ElementsAre("elsewhere", asideName));
        EXPECT_EQ(fs::symlink_status(folder / asideName).type(), before);
        fs::remove_all(folder / asideName);
    }
    EXPECT_EQ(folder.read("elsewhere/target.json"), oldText);

    for (std::size_t length = 0; length < oldText.size(); ++length) {
        folder.makeFile("note.json", oldText.substr(0, length));
        expectDefault(store().load(march3), folder / asideName);
        EXPECT_EQ(folder.read(asideName), oldText.substr(0, length));
        fs::remove(folder / asideName);
    }
}

TEST_F(CodableFileStoreTest, touchesNothingWhenTheSystemHasNoMeansToReadOrTheOwnerWantsItLeft) {
    folder.makeFile("note.json", oldText);
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none{0, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    const auto loaded = store().load(march3);
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(loaded.notRead, (SystemError{EMFILE, "read", folder / "note.json"}));
    EXPECT_FALSE(loaded.recoveredFromCorruption || loaded.movedAsideTo);

    folder.makeFile("note.json", "damaged");
    expectDefault(store().load(march3, DamagedFile::stays), std::nullopt);
    EXPECT_EQ(folder.read("note.json"), "damaged");
}

TEST_F(CodableFileStoreTest, leavesADamagedFileThatCannotBeMoved) {
    fs::create_symlink("nowhere", folder / asideName);
    for (int attempt = 1; attempt < 100; ++attempt) {
        folder.makeFile("note.json", "damaged");
        const auto name = "note.corrupt-20250303-090507-" + std::to_string(attempt) + ".json";
        EXPECT_EQ(store().load(march3).movedAsideTo, folder / name);
    }
    folder.makeFile("note.json", "damaged once more");
    expectDefault(store().load(march3), std::nullopt);
    EXPECT_EQ(folder.read("note.json"), "damaged once more");

    const std::string longName = std::string(245, 'n') + ".json";  // its dated name would be too long
    expectDefault(storeIn(folder.makeFile(longName, "damaged").parent_path(), longName).load(march3), std::nullopt);
    expectDefault(storeIn(folder.makeFile("file", "no folder")).load(march3), std::nullopt);
    EXPECT_EQ(folder.read(longName), "damaged");
}

TEST_F(CodableFileStoreTest, makesTheFolderAndReplacesTheWholeFile) {
    const Store deep = storeIn(folder / "a/b");
    for (const auto& note : {newNote, oldNote}) {
        ASSERT_TRUE(deep.save(note));
        EXPECT_EQ(deep.load(march3).value, note);
    }
    EXPECT_EQ(folder.read("a/b/note.json"), "{\n  \"old\": 0.5\n}");
    EXPECT_THAT(folder.names("a/b"), ElementsAre("note.json"));

    folder.makeFile("target", "kept");
    folder.makeLink("note.json", folder / "target");
    ASSERT_TRUE(store().save(oldNote));
    EXPECT_EQ(folder.read("target"), "kept") << "a link is replaced, and not what it points to";
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(folder / "note.json")));
}

TEST_F(CodableFileStoreTest, leavesTheOldFileWhenAWriteFails) {
    folder.makeFile("note.json", oldText);
    for (const auto& [result, code] : {std::pair(-1, ENOSPC), {-1, EIO}, {0, 0}}) {
        for (int failing = 1; failing <= 3; ++failing) {
            int calls = 0;
            const auto fails = [&](std::int32_t descriptor, const std::byte* bytes, std::size_t) -> ssize_t {
                if (++calls < failing) return systemWrite(descriptor, bytes, 100);
                errno = code;
                return result;
            };
            const auto saved = store(fails).save(newNote);
            ASSERT_FALSE(saved);
            EXPECT_EQ(calls, failing);
            EXPECT_EQ(saved.error().failure, StoreError::Failure::fileWriteUnknown);
            EXPECT_EQ(std::get<SystemError>(saved.error().cause).code, code != 0 ? code : EIO);
            EXPECT_EQ(folder.read("note.json"), oldText);
            EXPECT_THAT(folder.names(), ElementsAre("note.json"));
        }
    }
}

TEST_F(CodableFileStoreTest, leavesTheOldFileWhenTheProgramIsKilledWhileItWrites) {
    folder.makeFile("note.json", oldText);
    for (const int lastCall : {1, 7}) {
        const pid_t child = ::fork();
        if (child == 0) {
            int calls = 0;
            const auto dies = [&](std::int32_t descriptor, const std::byte* bytes, std::size_t) {
                if (++calls == lastCall) ::_exit(9);
                return systemWrite(descriptor, bytes, 10);
            };
            std::ignore = store(dies).save(newNote);
            ::_exit(0);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_EQ(WEXITSTATUS(status), 9);
        EXPECT_EQ(folder.read("note.json"), oldText);
    }
    EXPECT_EQ(folder.names().size(), 3U) << "each leaves its temporary file";
    const std::string uuid = "0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0";
    const auto kept = std::to_array<std::string>(
        {".note.json." + uuid + ".tmp", ".note.json." + uuid + ".tmp2", ".note.json.0f1e2d3c" + uuid.substr(8) + ".tmp",
         ".note.json..tmp", ".note.jsonX" + uuid + ".tmp", ".other.json." + uuid + ".tmp", "note.json"});
    fs::create_symlink(folder / "note.json", folder / kept[0]);
    for (const auto& name : std::span(kept).subspan(1, 5))
        folder.makeFile(name);
    store().removeLeftovers();
    EXPECT_THAT(folder.names(), testing::UnorderedElementsAreArray(kept));
    ASSERT_TRUE(store().save(newNote));
    EXPECT_EQ(store().load(march3).value, newNote);
}

TEST_F(CodableFileStoreTest, saysWhichStepFailed) {
    using enum StoreError::Failure;
    const auto deeper = folder.makeFile("file", "no folder") / "deeper";
    const auto inner = folder.makeFile("folder/note.json/inside").parent_path().parent_path();
    struct Row {
        Store store;
        Note note;
        StoreError::Failure failure;
        std::string description;
    };
    const Row table[] = {
        {storeIn(deeper), oldNote, directoryNotCreated, "Could not create " + deeper.native() + ": Not a directory"},
        {storeIn(inner), Note{{"x", std::numeric_limits<double>::infinity()}}, encoding, "x: JSON has no such number."},
        {storeIn(inner, std::string(240, 'n')), oldNote, fileWriteNoPermission,
         "Could not create a file in " + inner.native() + ": File name too long"},
        {storeIn(inner), oldNote, fileWriteUnknown,
         "Could not replace " + inner.native() + "/note.json: Is a directory"},
    };
    for (const auto& [failing, note, failure, description] : table) {
        const auto saved = failing.save(note);
        ASSERT_FALSE(saved) << description;
        EXPECT_EQ(saved.error().failure, failure) << description;
        EXPECT_EQ(saved.error().description(), description);
    }
    EXPECT_EQ(folder.read("file"), "no folder");
    EXPECT_THAT(folder.names("folder"), ElementsAre("note.json"));
    EXPECT_THAT(folder.names("folder/note.json"), ElementsAre("inside"));
}

TEST_F(CodableFileStoreTest, givesTheFileTheModeItWasMadeForOrHad) {
    const auto modeAfterSaving = [&](std::optional<std::uint16_t> mode) {
        EXPECT_TRUE(store(systemWrite, mode).save(oldNote));
        return fs::status(folder / "note.json").permissions();
    };
    const mode_t before = ::umask(0027);
    EXPECT_EQ(modeAfterSaving(std::nullopt), fs::perms(0640));
    EXPECT_EQ(modeAfterSaving(0606), fs::perms(0606)) << "whatever the umask says";
    EXPECT_EQ(modeAfterSaving(std::nullopt), fs::perms(0606)) << "the mode of the file that it replaces";
    ::umask(before);
}

}  // namespace
}  // namespace vostrel
