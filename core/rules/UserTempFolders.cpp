#include "rules/UserTempFolders.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>

#include "platform/FileStatus.h"
#include "platform/FolderListing.h"
#include "platform/OwnedDescriptor.h"

namespace vostrel {

namespace {

using Folders = std::expected<std::vector<std::filesystem::path>, SystemError>;

/// Keeps the names of the folders that begin with a prefix.
class PrefixSink final : public EntrySink {
public:
    explicit PrefixSink(std::string_view wanted) : prefix(wanted) {}
    void entry(const FolderEntry& entry) override {
        if (entry.type == EntryType::folder && entry.name.starts_with(prefix)) names.emplace_back(entry.name);
    }

    std::vector<std::string> names;

private:
    std::string_view prefix;
};

std::expected<std::vector<std::string>, int> namesOfFolders(int openFolder, std::string_view prefix) {
    PrefixSink sink(prefix);
    FolderListing listing(ListingDetail::sizes);
    for (;;) {
        const auto step = listing.readSome(openFolder, sink);
        if (!step) return std::unexpected(step.error());
        if (*step == FolderListing::Step::end) break;
    }
    std::ranges::sort(sink.names);
    return std::move(sink.names);
}

}  // namespace

Folders userTempFolders(const std::filesystem::path& tempBase, const std::string& prefix, std::uint32_t uid) {
    if (prefix.empty()) return {};
    const OwnedDescriptor base(::open(tempBase.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!base.isOpen() && errno == ENOENT) return {};
    if (!base.isOpen()) return std::unexpected(SystemError{errno, "open", tempBase});
    const auto names = namesOfFolders(base.get(), prefix);
    if (!names) return std::unexpected(SystemError{names.error(), "list", tempBase});

    std::vector<std::filesystem::path> folders;
    for (const std::string& name : *names) {
        const auto status = statusOfEntry(base.get(), name.c_str());
        if (status && status->type == EntryType::folder && status->owner == uid) folders.push_back(tempBase / name);
    }
    return folders;
}

}  // namespace vostrel
