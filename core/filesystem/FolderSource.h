#pragma once

#include <expected>
#include <functional>
#include <string>

#include "platform/FileStatus.h"
#include "platform/FolderListing.h"

namespace vostrel {

/// Opens a folder for listing: a descriptor, or -1 with the error in `errno`. Thread-safe.
using FolderOpener = std::function<int(const std::string& path)>;

/// Where a walk finds its folders: the file system, or a test's made-up tree.
///
/// Several threads call one source at once. An open folder belongs to the thread that opened it.
class FolderSource {
public:
    virtual ~FolderSource() = default;

    /// What lies at a path, no final link followed.
    virtual std::expected<FileStatus, int> lookUp(const std::string& path) = 0;
    /// The path of an existing folder with every link resolved.
    virtual std::expected<std::string, int> resolve(const std::string& path) = 0;

    /// As `FolderOpener` does.
    virtual int open(const std::string& path) = 0;
    virtual std::expected<FileStatus, int> status(int folder) = 0;
    /// The next few entries, through the calling thread's `listing`.
    virtual std::expected<FolderListing::Step, int> readSome(int folder, FolderListing& listing, EntrySink& sink) = 0;
    virtual void close(int folder) = 0;
};

/// The file system's folders, opened by `opener`.
class SystemFolderSource final : public FolderSource {
public:
    /// With the system's own opening, which follows no link in any component.
    SystemFolderSource();
    explicit SystemFolderSource(FolderOpener opener);

    std::expected<FileStatus, int> lookUp(const std::string& path) override;
    std::expected<std::string, int> resolve(const std::string& path) override;
    int open(const std::string& path) override;
    std::expected<FileStatus, int> status(int folder) override;
    std::expected<FolderListing::Step, int> readSome(int folder, FolderListing& listing, EntrySink& sink) override;
    void close(int folder) override;

private:
    FolderOpener opener;
};

}  // namespace vostrel
