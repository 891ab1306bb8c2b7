// The least that telling duplicates by digests can cost, to compare searches against.
//
// usage: bench_duplicates_floor [--threads N] [--last] FOLDER
//
// Files of one size are digested over their first 64 KiB, with --last those that agree over their last 64 KiB too, then
// those that agree over everything: SHA-256, plain reads of 256 KiB in the order of their numbers. Nothing is checked
// and nothing kept.
#include <fcntl.h>
#include <openssl/evp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace {

constexpr std::int64_t blockSize = 65'536;
constexpr std::size_t bufferSize = 262'144;

struct File {
    std::string path;
    std::int64_t size = 0;
    ino_t inode = 0;
    std::array<unsigned char, 32> digest{};
};
using Group = std::vector<File*>;

std::atomic<std::int64_t> bytesRead = 0;

void digest(File& file, std::int64_t start, std::int64_t length) {
    thread_local std::vector<unsigned char> buffer(bufferSize);
    const int open = ::open(file.path.c_str(), O_RDONLY | O_CLOEXEC);
    EVP_MD_CTX* context = EVP_MD_CTX_new();
    EVP_DigestInit_ex(context, EVP_sha256(), nullptr);
    for (std::int64_t done = 0; done < length;) {
        const auto wanted = std::min<std::int64_t>(length - done, bufferSize);
        const ssize_t count = ::pread(open, buffer.data(), static_cast<std::size_t>(wanted), start + done);
        if (count <= 0) std::exit(1);
        EVP_DigestUpdate(context, buffer.data(), static_cast<std::size_t>(count));
        done += count;
        bytesRead += count;
    }
    EVP_DigestFinal_ex(context, file.digest.data(), nullptr);
    EVP_MD_CTX_free(context);
    ::close(open);
}

void inParallel(int threads, std::size_t jobs, const std::function<void(std::size_t)>& job) {
    std::atomic<std::size_t> next = 0;
    std::vector<std::jthread> workers;
    for (int thread = 0; thread < threads; ++thread) {
        workers.emplace_back([&] {
            for (std::size_t each = next++; each < jobs; each = next++)
                job(each);
        });
    }
}

/// Tells the members of each group apart by the digest of a range of each.
std::vector<Group> divided(const std::vector<Group>& groups, int threads,
                           const std::function<std::pair<std::int64_t, std::int64_t>(const File&)>& range) {
    Group files;
    for (const Group& group : groups)
        files.insert(files.end(), group.begin(), group.end());
    std::ranges::sort(files, std::less(), &File::inode);
    inParallel(threads, files.size(), [&](std::size_t each) {
        const auto [start, length] = range(*files[each]);
        digest(*files[each], start, length);
    });
    std::vector<Group> result;
    for (const Group& group : groups) {
        std::map<std::array<unsigned char, 32>, Group> alike;
        for (File* file : group)
            alike[file->digest].push_back(file);
        for (auto& [_, members] : alike) {
            if (members.size() > 1) result.push_back(std::move(members));
        }
    }
    return result;
}

}  // namespace

int main(int count, char** arguments) {
    int threads = 2;
    bool looksAtLast = false;
    std::string folder;
    for (int index = 1; index < count; ++index) {
        const std::string_view word = arguments[index];
        if (word == "--threads" && index + 1 < count) {
            threads = std::atoi(arguments[++index]);
        } else if (word == "--last") {
            looksAtLast = true;
        } else {
            folder = word;
        }
    }
    std::vector<File> files;
    std::set<ino_t> met;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        struct stat facts{};
        if (::lstat(entry.path().c_str(), &facts) != 0 || !S_ISREG(facts.st_mode) || facts.st_size == 0) continue;
        if (facts.st_nlink < 2 || met.insert(facts.st_ino).second)
            files.push_back({entry.path(), facts.st_size, facts.st_ino, {}});
    }
    std::map<std::int64_t, Group> bySize;
    for (File& file : files)
        bySize[file.size].push_back(&file);
    std::vector<Group> groups;
    for (auto& [_, group] : bySize) {
        if (group.size() > 1) groups.push_back(std::move(group));
    }
    groups = divided(groups, threads,
                     [](const File& file) { return std::pair(std::int64_t(0), std::min(file.size, blockSize)); });
    std::vector<Group> done;
    std::erase_if(groups, [&](Group& group) {
        if (group.front()->size > blockSize) return false;
        done.push_back(group);
        return true;
    });
    if (looksAtLast)
        groups = divided(groups, threads, [](const File& file) { return std::pair(file.size - blockSize, blockSize); });
    groups = divided(groups, threads, [](const File& file) { return std::pair(std::int64_t(0), file.size); });
    std::printf("groups %zu bytes-read %lld\n", groups.size() + done.size(), static_cast<long long>(bytesRead));
}
