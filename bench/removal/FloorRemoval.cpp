// The least that removing a tree by open folders can cost: lists each folder, asks every entry's status right before
// it unlinks it, decides nothing. Prints the seconds that took.
//   bench_removal_floor FOLDER
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>

namespace {

bool isSelfOrParent(const char* name) {
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

void empty(int folder) {
    DIR* listed = fdopendir(folder);
    if (listed == nullptr) return;
    while (const dirent* entry = readdir(listed)) {
        if (isSelfOrParent(entry->d_name)) continue;
        struct stat status{};
        if (fstatat(dirfd(listed), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) continue;
        if (!S_ISDIR(status.st_mode)) {
            unlinkat(dirfd(listed), entry->d_name, 0);
            continue;
        }
        const int inside = openat(dirfd(listed), entry->d_name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (inside >= 0) empty(inside);
        unlinkat(dirfd(listed), entry->d_name, AT_REMOVEDIR);
    }
    closedir(listed);
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) return 2;
    const auto start = std::chrono::steady_clock::now();
    const int folder = open(arguments[1], O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder < 0) return 1;
    empty(folder);
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
    std::printf("%.6f\n", wall.count());
}
