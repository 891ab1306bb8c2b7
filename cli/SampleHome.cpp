#include "cli/SampleHome.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <system_error>
#include <utility>

#include "platform/FileStatus.h"
#include "platform/UserAccount.h"

namespace vostrel::cli {

namespace {

namespace fs = std::filesystem;

struct SampleFile {
    const char* path;
    std::size_t kilobytes;
};

constexpr auto sampleFiles = std::to_array<SampleFile>({
    // Downloads that nobody has touched for forty days.
    {"Downloads/Editor-4.2-installer.pkg", 5'200},
    {"Downloads/holiday clips.zip", 3'400},
    {"Downloads/invoice (1).pdf", 120},
    {"Downloads/dataset/readings.csv", 900},
    {"Downloads/dataset/raw/2026-08.bin", 1'500},
    {"Downloads/dataset/raw/2026-09.bin", 1'400},
    {"Downloads/lecture.mov", 2'600},
    // What a preview leaves alone, each for a reason of its own.
    {"Downloads/still downloading.part", 300},
    {"Downloads/taxes/2025.keep", 40},
    {"Downloads/taxes/receipts.pdf", 80},
    {"Downloads/Family.photoslibrary/database/photos.db", 700},
    // What ready-made rules are about, beside what they leave alone.
    {".npm/_cacache/content-v2/sha512/1f/tarball", 2'700},
    {".npm/_cacache/index-v5/0c/entry", 60},
    {".npm/_cacache/my own notes/idea.txt", 8},
    {"Desktop/Screenshot 2026-09-14 at 9.05.07 AM.png", 640},
    {"Desktop/Screen Recording 2026-09-20 at 18.31.44.mov", 2'200},
    {"Desktop/Screenshot for grandma.png", 500},
    // An old project, a fresh one, and a folder that a person named like a build folder.
    {"Code/shop/package.json", 1},
    {"Code/shop/src/main.js", 12},
    {"Code/shop/node_modules/left-pad/package.json", 1},
    {"Code/shop/node_modules/left-pad/index.js", 1'300},
    {"Code/atlas/package.json", 1},
    {"Code/atlas/src/map.js", 12},
    {"Code/atlas/node_modules/left-pad/package.json", 1},
    {"Code/archery/Cargo.toml", 1},
    {"Code/archery/target/scores of the season.csv", 90},
    // What no rule may touch.
    {"Documents/letter to the bank.txt", 8},
    {"Desktop/todo.txt", 4},
    {"Pictures/summer.jpg", 2'100},
    {"Pictures/to print/summer again.jpg", 2'100},
    {".ssh/id_ed25519", 4},
});

/// A wide file by its blocks: holes would take no space.
bool writeFile(const fs::path& path, std::size_t kilobytes) {
    std::error_code failure;
    fs::create_directories(path.parent_path(), failure);
    if (failure) return false;
    std::ofstream file(path, std::ios::binary);
    const std::string kilobyte(1000, 'v');
    for (std::size_t written = 0; written < kilobytes && file; ++written)
        file << kilobyte;
    file.close();
    return file.good();
}

void setModified(const fs::path& path, Date date) {
    const timespec time{.tv_sec = date.seconds(), .tv_nsec = date.nanosecondsOfSecond()};
    const std::array<timespec, 2> times{time, time};
    utimensat(AT_FDCWD, path.c_str(), times.data(), AT_SYMLINK_NOFOLLOW);
}

/// Files and folders get the permissions that a cautious account gives them: a folder that others may write to is never
/// cleaned.
class CautiousPermissions {
public:
    CautiousPermissions() : usual(umask(022)) {}
    CautiousPermissions(const CautiousPermissions&) = delete;
    CautiousPermissions& operator=(const CautiousPermissions&) = delete;
    ~CautiousPermissions() { umask(usual); }

private:
    mode_t usual;
};

bool fill(const SampleHome& sample, Date present) {
    const CautiousPermissions permissions;
    for (const auto& [path, kilobytes] : sampleFiles) {
        if (!writeFile(sample.home() / path, kilobytes)) return false;
    }
    std::error_code failure;
    const auto downloads = sample.downloads();
    fs::create_hard_link(downloads / "lecture.mov", downloads / "lecture (copy).mov", failure);
    if (!failure) fs::create_directory_symlink(sample.home() / "Pictures", downloads / "my pictures", failure);
    setModified(downloads / "still downloading.part", present - std::chrono::minutes(2));
    for (const char* project : {"shop", "atlas"})
        std::ofstream(sample.home() / "Code" / project / "node_modules/.package-lock.json")
            << R"({"packages": {"node_modules/left-pad": {"version": "1.3.0"}}})";
    setModified(sample.home() / "Code/atlas/src/map.js", present - std::chrono::days(2));
    return !failure;
}

}  // namespace

std::expected<SampleHome, SystemError> SampleHome::make(Date present) {
    std::string pattern = (temporaryFolder() / "vostrel-demo-XXXXXX").native();
    if (mkdtemp(pattern.data()) == nullptr) return std::unexpected(SystemError{errno, "create", pattern});
    std::error_code failure;
    SampleHome sample(fs::canonical(pattern, failure));
    if (failure || !fill(sample, present)) {
        return std::unexpected(SystemError{failure ? failure.value() : EIO, "fill", pattern});
    }
    return sample;
}

SampleHome::SampleHome(SampleHome&& other) noexcept : folder(std::exchange(other.folder, {})) {}

SampleHome::~SampleHome() {
    std::error_code ignored;
    if (!folder.empty()) fs::remove_all(folder, ignored);
}

std::map<std::string, SampleHome::Stamp> SampleHome::stamps() const {
    std::map<std::string, Stamp> found;
    std::error_code failure;
    for (fs::recursive_directory_iterator entry(home(), failure), end; !failure && entry != end;
         entry.increment(failure)) {
        const auto status = statusOfPath(entry->path());
        if (!status) continue;
        found[entry->path().native()] = {status->inode, status->mode, status->length, status->modified.nanoseconds(),
                                         status->changed.nanoseconds()};
    }
    return found;
}

}  // namespace vostrel::cli
