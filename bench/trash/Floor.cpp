// The least that moving every file of a folder to a Trash can cost: an info file written and synced, and
// one bare rename, with everything open and nothing checked.
//   floor FOLDER TRASH
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

int openFolder(const std::string& path) {
    return open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

bool writeInfo(int info, const std::string& name, const std::string& text) {
    const int file = openat(info, (name + ".trashinfo").c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    const bool isWritten =
        file >= 0 && write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size()) && fsync(file) == 0;
    return close(file) == 0 && isWritten;
}

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    DIR* const listing = opendir(folder.c_str());
    while (const dirent* entry = listing == nullptr ? nullptr : readdir(listing)) {
        if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
    }
    if (listing != nullptr) closedir(listing);
    return names;
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) return 2;
    const std::string folder = arguments[1];
    const std::string trash = arguments[2];
    const int from = openFolder(folder);
    const int files = openFolder(trash + "/files");
    const int info = openFolder(trash + "/info");
    for (const std::string& name : namesIn(folder)) {
        const std::string text = "[Trash Info]\nPath=" + folder + "/" + name + "\nDeletionDate=2025-03-03T09:05:07\n";
        if (!writeInfo(info, name, text)) return 1;
        if (renameat2(from, name.c_str(), files, name.c_str(), RENAME_NOREPLACE) != 0) return 1;
    }
    return 0;
}
