#include "filesystem/FileStat.h"

#include "platform/FileStatus.h"

namespace vostrel {

std::optional<FileStat> FileStat::read(const std::filesystem::path& path) {
    const auto status = statusOfPath(path);
    if (!status) return std::nullopt;
    return FileStat{
        {status->device, status->inode},
        status->type == EntryType::link,
        status->type == EntryType::folder,
        status->type == EntryType::file,
    };
}

std::optional<FileStat::Ownership> FileStat::ownership(const std::filesystem::path& path) {
    const auto status = statusOfPath(path);
    if (!status) return std::nullopt;
    return Ownership{status->owner, status->mode};
}

}  // namespace vostrel
