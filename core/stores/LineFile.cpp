#include "stores/LineFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>
#include <tuple>

#include "platform/OwnedDescriptor.h"
#include "stores/StoredFile.h"

namespace vostrel {

namespace {

namespace fs = std::filesystem;

constexpr auto pauseBetweenTries = std::chrono::milliseconds(10);
constexpr int tries = 1000;

/// A file that nobody else appends to while this lives.
struct LockedFile {
    OwnedDescriptor opened;
    off_t size = 0;
};

/// Some file systems know no syncing of folders: they keep names their own way.
std::expected<void, int> syncNames(const fs::path& folder) {
    auto synced = syncFolder(folder);
    if (!synced && synced.error() == EINVAL) return {};
    return synced;
}

/// Makes the folder and those above it, each known to the disk.
std::expected<void, int> makeFolder(const fs::path& folder) {
    std::error_code problem;
    if (fs::is_directory(folder, problem)) return {};
    if (folder.has_relative_path()) {
        if (auto above = makeFolder(folder.parent_path()); !above) return above;
    }
    if (!fs::create_directory(folder, problem) && problem) return std::unexpected(problem.value());
    return syncNames(folder.parent_path());
}

std::expected<void, int> lock(int openFile) {
    for (int attempt = 1; ::flock(openFile, LOCK_EX | LOCK_NB) != 0; ++attempt) {
        const bool isHeld = errno == EWOULDBLOCK || errno == EINTR;
        if (!isHeld || attempt == tries) return std::unexpected(errno);
        std::this_thread::sleep_for(pauseBetweenTries);
    }
    return {};
}

/// Opened anew as long as another program removes the file before it is locked.
std::expected<LockedFile, int> openLocked(const fs::path& path) {
    constexpr int flags = O_RDWR | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    while (true) {
        OwnedDescriptor opened(::open(path.c_str(), flags, 0600));
        struct stat facts{};
        if (!opened.isOpen() || ::fstat(opened.get(), &facts) != 0) return std::unexpected(errno);
        if (!S_ISREG(facts.st_mode)) return std::unexpected(EINVAL);
        if (auto locked = lock(opened.get()); !locked) return std::unexpected(locked.error());
        if (::fstat(opened.get(), &facts) != 0) return std::unexpected(errno);
        if (facts.st_nlink > 0) return LockedFile{std::move(opened), facts.st_size};
    }
}

/// Whether a program was killed in the middle of the last line.
std::expected<bool, int> endsInMidLine(const LockedFile& file) {
    if (file.size == 0) return false;
    char last = 0;
    while (true) {
        const ssize_t count = ::pread(file.opened.get(), &last, 1, file.size - 1);
        if (count >= 0) return count == 1 && last != '\n';
        if (errno != EINTR) return std::unexpected(errno);
    }
}

}  // namespace

std::expected<void, SystemError> LineFile::append(std::string_view line) const {
    const auto failed = [&](const char* operation, int code) {
        return std::unexpected(SystemError{code, operation, path});
    };
    if (const auto made = makeFolder(path.parent_path()); !made) return failed("make the folder of", made.error());
    const auto file = openLocked(path);
    if (!file) return failed("open", file.error());
    const auto isTorn = endsInMidLine(*file);
    if (!isTorn) return failed("read", isTorn.error());

    // One piece, so that it is one call where the system takes it whole.
    const std::string bytes = (*isTorn ? "\n" : "") + std::string(line) + "\n";
    if (file->size + static_cast<std::int64_t>(bytes.size()) > StoredFile::mostBytes) return failed("write", EFBIG);
    auto written = writeAll(file->opened.get(), bytes, writer);
    if (written) written = sync(file->opened.get());
    if (written && file->size == 0) written = syncNames(path.parent_path());
    if (written) return {};
    // Should this fail as well, the next line begins on a new one.
    std::ignore = ::ftruncate(file->opened.get(), file->size);
    return failed("write", written.error());
}

std::expected<std::string, SystemError> LineFile::read() const {
    return StoredFile{.directory = path.parent_path(), .name = path.filename(), .mode = {}}.read();
}

bool LineFile::isReadable() const {
    const OwnedDescriptor opened(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat facts{};
    return opened.isOpen() && ::fstat(opened.get(), &facts) == 0 && S_ISREG(facts.st_mode) &&
           facts.st_size <= StoredFile::mostBytes;
}

std::expected<void, SystemError> LineFile::remove() const {
    const auto failed = [&] { return std::unexpected(SystemError{errno, "remove", path}); };
    const OwnedDescriptor opened(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!opened.isOpen() || ::flock(opened.get(), LOCK_EX | LOCK_NB) != 0) return failed();
    if (::unlink(path.c_str()) != 0) return failed();
    return {};
}

}  // namespace vostrel
