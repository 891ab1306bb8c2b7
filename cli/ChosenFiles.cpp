#include "cli/ChosenFiles.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>

#include "base/UnicodeText.h"
#include "platform/OwnedDescriptor.h"
#include "platform/VolumeFacts.h"

namespace vostrel::cli {

namespace fs = std::filesystem;

namespace {

/// Whether a path with folders in it leads to that very folder.
bool liesIn(const fs::path& folder, const fs::path& file) {
    std::error_code problem;
    return !file.has_parent_path() || fs::equivalent(file.parent_path(), folder, problem);
}

}  // namespace

std::expected<PinnedFile, Failure> chosenFile(const fs::path& folder, const fs::path& file) {
    const OwnedDescriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const std::string name = file.filename().native();
    struct stat facts = {};
    if (!opened.isOpen() || !liesIn(folder, file) ||
        ::fstatat(opened.get(), name.c_str(), &facts, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISREG(facts.st_mode))
        return failed(fmt::format("There is no file {} directly in {}.", file.native(), folder.native()));
    const auto volume = volumeUUID(opened.get());
    if (!volume)
        return failed("The disk of " + folder.native() + " does not say which it is, so its files cannot be chosen.");
    return PinnedFile{precomposed(name), *volume, facts.st_ino};
}

}  // namespace vostrel::cli
