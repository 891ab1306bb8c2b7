#include "filesystem/FolderSource.h"

#include <unistd.h>

#include <filesystem>
#include <system_error>

#include "platform/FolderOpening.h"

namespace vostrel {

SystemFolderSource::SystemFolderSource()
    : SystemFolderSource([](const std::string& path) { return openFolder(path.c_str()); }) {}

SystemFolderSource::SystemFolderSource(FolderOpener how) : opener(std::move(how)) {}

std::expected<FileStatus, int> SystemFolderSource::lookUp(const std::string& path) {
    return statusOfPath(path);
}

std::expected<std::string, int> SystemFolderSource::resolve(const std::string& path) {
    std::error_code failure;
    const auto resolved = std::filesystem::canonical(path, failure);
    if (failure) return std::unexpected(failure.value());
    return resolved.native();
}

int SystemFolderSource::open(const std::string& path) {
    return opener(path);
}

std::expected<FileStatus, int> SystemFolderSource::status(int folder) {
    return statusOfOpen(folder);
}

std::expected<FolderListing::Step, int> SystemFolderSource::readSome(int folder, FolderListing& listing,
                                                                     EntrySink& sink) {
    return listing.readSome(folder, sink);
}

void SystemFolderSource::close(int folder) {
    ::close(folder);
}

}  // namespace vostrel
