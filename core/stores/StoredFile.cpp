#include "stores/StoredFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <tuple>
#include <vector>

#include "base/Uuid.h"
#include "platform/FileRename.h"
#include "platform/FileSync.h"
#include "platform/OwnedDescriptor.h"
#include "platform/UserAccount.h"
#include "stores/DateText.h"

namespace vostrel {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t chunkSize = 65'536;
constexpr mode_t permissionBits = 0777;

std::expected<std::string, int> readToEnd(int openFile) {
    std::string content;
    std::string chunk(chunkSize, '\0');
    while (true) {
        const ssize_t count = ::read(openFile, chunk.data(), chunk.size());
        if (count == 0) return content;
        if (count > 0) {
            content.append(chunk, 0, static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return std::unexpected(errno);
        }
    }
}

/// A file that is gone at the end unless it was renamed to its place.
class TemporaryFile {
public:
    TemporaryFile(fs::path place, mode_t mode)
        : path(std::move(place)), opened(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode)) {}
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        opened.reset();
        if (!path.empty()) ::unlink(path.c_str());
    }

    [[nodiscard]] bool isOpen() const { return opened.isOpen(); }
    [[nodiscard]] int descriptor() const { return opened.get(); }

    [[nodiscard]] std::expected<void, int> renameTo(const fs::path& place) {
        opened.reset();
        if (::rename(path.c_str(), place.c_str()) != 0) return std::unexpected(errno);
        path.clear();
        return {};
    }

private:
    fs::path path;
    OwnedDescriptor opened;
};

std::string temporaryName(const std::string& name, Uuid uuid) {
    return fmt::format(".{}.{}.tmp", name, uuid.text());
}

bool isTemporaryNameOf(const std::string& name, const std::string& entry) {
    const std::size_t before = name.size() + 2;
    const auto uuid = entry.size() > before ? Uuid::parse(entry.substr(before, Uuid().text().size())) : std::nullopt;
    return uuid && entry == temporaryName(name, *uuid);
}

bool isOwnFile(const fs::path& path) {
    struct stat facts{};
    return ::lstat(path.c_str(), &facts) == 0 && S_ISREG(facts.st_mode) && facts.st_uid == effectiveUserID();
}

/// The permission bits of the regular file at that path.
std::optional<mode_t> modeOfFile(const fs::path& path) {
    struct stat facts{};
    if (::lstat(path.c_str(), &facts) != 0 || !S_ISREG(facts.st_mode)) return std::nullopt;
    return facts.st_mode & permissionBits;
}

std::unexpected<StoreError> failure(StoreError::Failure kind, int code, std::string operation, fs::path path) {
    return std::unexpected(StoreError{kind, SystemError{code, std::move(operation), std::move(path)}});
}

}  // namespace

std::expected<std::string, SystemError> StoredFile::read() const {
    const auto failed = [&](int code) { return std::unexpected(SystemError{code, "read", path()}); };
    const OwnedDescriptor opened(::open(path().c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC));
    if (!opened.isOpen()) return failed(errno);
    struct stat facts{};
    if (::fstat(opened.get(), &facts) != 0) return failed(errno);
    if (!S_ISREG(facts.st_mode)) return failed(EINVAL);
    if (facts.st_size > mostBytes) return failed(EFBIG);
    auto content = readToEnd(opened.get());
    if (!content) return failed(content.error());
    return std::move(*content);
}

std::optional<fs::path> StoredFile::moveAside(Date now) const {
    constexpr int attempts = 100;
    const std::string base = fs::path(name).stem().native() + ".corrupt-" + compactDateText(now);
    for (int attempt = 0; attempt < attempts; ++attempt) {
        fs::path candidate = directory / (attempt == 0 ? base + ".json" : fmt::format("{}-{}.json", base, attempt));
        const auto renamed = renameExclusive(path(), candidate);
        if (renamed) return candidate;
        if (renamed.error() != EEXIST) return std::nullopt;
    }
    return std::nullopt;
}

void StoredFile::removeLeftovers() const {
    std::error_code failure;
    std::vector<fs::path> leftovers;
    for (fs::directory_iterator entry(directory, failure), end; !failure && entry != end; entry.increment(failure)) {
        if (isTemporaryNameOf(name, entry->path().filename().native()) && isOwnFile(entry->path()))
            leftovers.push_back(entry->path());
    }
    for (const auto& leftover : leftovers)
        ::unlink(leftover.c_str());
}

std::expected<void, StoreError> StoredFile::makeDirectory() const {
    std::error_code error;
    fs::create_directories(directory, error);
    if (error) return failure(StoreError::Failure::directoryNotCreated, error.value(), "create", directory);
    return {};
}

std::expected<void, StoreError> StoredFile::replace(std::string_view bytes) const {
    using enum StoreError::Failure;
    constexpr mode_t anyoneMay = 0666;
    const auto exactMode = mode ? std::optional<mode_t>(*mode) : modeOfFile(path());
    TemporaryFile temporary(directory / temporaryName(name, Uuid::random()), exactMode.value_or(anyoneMay));
    if (!temporary.isOpen()) return failure(fileWriteNoPermission, errno, "create a file in", directory);
    // The umask has no say about bits that are wanted exactly.
    if (exactMode && ::fchmod(temporary.descriptor(), *exactMode) != 0)
        return failure(fileWriteUnknown, errno, "set the permissions of", path());
    if (const auto written = writeAll(temporary.descriptor(), bytes, writer); !written)
        return failure(fileWriteUnknown, written.error(), "write", path());
    if (const auto synced = syncFile(temporary.descriptor()); !synced)
        return failure(fileWriteUnknown, synced.error(), "write", path());
    if (const auto renamed = temporary.renameTo(path()); !renamed)
        return failure(fileWriteUnknown, renamed.error(), "replace", path());
    // The new file is in place and whole; whether the disk already knows its name changes nothing that a caller could
    // still do.
    std::ignore = syncFolder(directory);
    return {};
}

}  // namespace vostrel
