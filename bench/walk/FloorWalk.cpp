// The least that adding up a tree of folders can cost on Linux, to compare walks against.
//
// usage: bench_walk_floor [--threads N] FOLDER
//
// For each folder openat below its parent's descriptor, fstat, getdents64 until it is empty, close; for each entry
// that is neither folder nor link one fstatat, a few per cent cheaper than statx. Nothing is decided, nothing kept but
// the sums and the names of hard-linked files. One thread goes down by plain recursion; several share one stack.
#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <tuple>
#include <vector>

namespace {

constexpr std::size_t bufferSize = 131'072;

struct KernelEntry {
    std::uint64_t inode;
    std::int64_t offset;
    std::uint16_t length;
    std::uint8_t type;
    char name[1];
};

struct LinkedFile {
    dev_t device;
    ino_t inode;
    std::int64_t bytes;

    friend bool operator<(const LinkedFile& left, const LinkedFile& right) {
        return std::tie(left.device, left.inode) < std::tie(right.device, right.inode);
    }
    friend bool operator==(const LinkedFile& left, const LinkedFile& right) {
        return left.device == right.device && left.inode == right.inode;
    }
};

/// What one thread adds up, and its buffer.
struct Sums {
    std::int64_t bytes = 0;
    std::int64_t files = 0;
    std::int64_t folders = 0;
    std::vector<LinkedFile> linkedFiles;
    std::unique_ptr<char[]> buffer = std::make_unique_for_overwrite<char[]>(bufferSize);

    void add(Sums&& other) {
        bytes += other.bytes;
        files += other.files;
        folders += other.folders;
        linkedFiles.insert(linkedFiles.end(), other.linkedFiles.begin(), other.linkedFiles.end());
    }

    void countLinkedFilesOnce() {
        std::ranges::sort(linkedFiles, std::less<>());
        const auto repeats = std::ranges::unique(linkedFiles);
        linkedFiles.erase(repeats.begin(), repeats.end());
        for (const auto& file : linkedFiles)
            bytes += file.bytes;
        files += static_cast<std::int64_t>(linkedFiles.size());
    }
};

int openFolder(int parent, const char* name, dev_t& device) {
    const int folder = openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    struct stat status{};
    if (folder >= 0 && fstat(folder, &status) == 0) device = status.st_dev;
    return folder;
}

void countFile(int folder, const char* name, Sums& sums) {
    struct stat found{};
    if (fstatat(folder, name, &found, AT_SYMLINK_NOFOLLOW) != 0) return;
    const std::int64_t bytes = found.st_blocks * 512;
    if (found.st_nlink > 1) {
        sums.linkedFiles.push_back({found.st_dev, found.st_ino, bytes});
    } else {
        sums.bytes += bytes;
        ++sums.files;
    }
}

/// Lists an open folder: files are counted, the names of subfolders appended to `subfolders`, each with its zero.
void list(int folder, Sums& sums, std::string& subfolders) {
    ++sums.folders;
    while (true) {
        const long filled = syscall(SYS_getdents64, folder, sums.buffer.get(), bufferSize);
        if (filled <= 0) return;
        for (long at = 0; at < filled;) {
            const auto* entry = reinterpret_cast<const KernelEntry*>(sums.buffer.get() + at);
            at += entry->length;
            const std::string_view name(static_cast<const char*>(entry->name));
            if (name == "." || name == ".." || entry->type == DT_LNK) continue;
            if (entry->type == DT_DIR) {
                subfolders.append(name.data(), name.size() + 1);
            } else {
                countFile(folder, name.data(), sums);
            }
        }
    }
}

template <class Each>
void forEachName(const std::string& names, Each each) {
    for (std::size_t at = 0; at < names.size(); at = names.find('\0', at) + 1)
        each(names.c_str() + at);
}

void walk(int parent, const char* name, dev_t parentDevice, Sums& sums) {
    dev_t device = parentDevice;
    const int folder = openFolder(parent, name, device);
    if (folder < 0) return;
    if (parent == AT_FDCWD || device == parentDevice) {
        std::string subfolders;
        list(folder, sums, subfolders);
        forEachName(subfolders, [&](const char* subfolder) { walk(folder, subfolder, device, sums); });
    }
    close(folder);
}

/// Several threads that list folders off one stack.
class SharedWalk {
public:
    Sums run(const char* root, unsigned threads) {
        waiting.push_back({nullptr, root});
        std::vector<Sums> sums(threads);
        std::vector<std::thread> others;
        for (unsigned index = 1; index < threads; ++index)
            others.emplace_back([this, &sums, index] { work(sums[index]); });
        work(sums[0]);
        for (auto& other : others)
            other.join();
        for (unsigned index = 1; index < threads; ++index)
            sums[0].add(std::move(sums[index]));
        return std::move(sums[0]);
    }

private:
    /// Stays open until the last of its subfolders is.
    struct Folder {
        int descriptor = -1;
        dev_t device = 0;

        Folder() = default;
        Folder(const Folder&) = delete;
        Folder& operator=(const Folder&) = delete;
        ~Folder() {
            if (descriptor >= 0) close(descriptor);
        }
    };
    struct Waiting {
        std::shared_ptr<const Folder> parent;
        std::string name;
    };

    void work(Sums& sums) {
        std::string subfolders;
        std::unique_lock guard(lock);
        while (true) {
            ++idle;
            changed.wait(guard, [this] { return !waiting.empty() || busy == 0; });
            --idle;
            if (waiting.empty()) return;
            const Waiting next = std::move(waiting.back());
            waiting.pop_back();
            ++busy;
            guard.unlock();
            subfolders.clear();
            const auto folder = listOne(next, sums, subfolders);
            guard.lock();
            --busy;
            forEachName(subfolders, [&](const char* name) { waiting.push_back({folder, name}); });
            if (idle > 0 && (waiting.size() > 1 || busy == 0)) changed.notify_all();
        }
    }

    static std::shared_ptr<const Folder> listOne(const Waiting& next, Sums& sums, std::string& subfolders) {
        auto folder = std::make_shared<Folder>();
        const int parent = next.parent ? next.parent->descriptor : AT_FDCWD;
        folder->descriptor = openFolder(parent, next.name.c_str(), folder->device);
        const bool isEntered = folder->descriptor >= 0 && (!next.parent || next.parent->device == folder->device);
        if (isEntered) list(folder->descriptor, sums, subfolders);
        return folder;
    }

    std::mutex lock;
    std::condition_variable changed;
    std::vector<Waiting> waiting;
    unsigned busy = 0;
    unsigned idle = 0;
};

void allowManyDescriptors() {
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
}

}  // namespace

int main(int count, char** arguments) {
    unsigned threads = 1;
    const char* root = nullptr;
    for (int index = 1; index < count; ++index) {
        if (std::string_view(arguments[index]) == "--threads" && index + 1 < count) {
            threads = static_cast<unsigned>(std::atoi(arguments[++index]));
        } else {
            root = arguments[index];
        }
    }
    if (root == nullptr || threads == 0) {
        std::fputs("usage: bench_walk_floor [--threads N] FOLDER\n", stderr);
        return 2;
    }
    allowManyDescriptors();
    Sums sums;
    if (threads == 1) {
        walk(AT_FDCWD, root, 0, sums);
    } else {
        sums = SharedWalk().run(root, threads);
    }
    sums.countLinkedFilesOnce();
    std::printf("bytes %lld files %lld\n", static_cast<long long>(sums.bytes), static_cast<long long>(sums.files));
    return 0;
}
