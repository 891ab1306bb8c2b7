// Measures a folder with SizeWalker and prints what came out, how many allocations it made and its peak memory.
//
// usage: bench_walk_sizes [--helpers N] FOLDER        as many helpers as usual when not told otherwise
#include <sys/resource.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <string_view>

#include "filesystem/SizeWalker.h"

namespace {

std::atomic<long long> allocations = 0;

void* allocate(std::size_t size) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    void* memory = std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

}  // namespace

void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}

int main(int count, char** arguments) {
    vostrel::SizeWalker walker{.access = [](const std::string&) { return vostrel::AccessDecision{}; }};
    const char* root = nullptr;
    for (int index = 1; index < count; ++index) {
        if (std::string_view(arguments[index]) == "--helpers" && index + 1 < count) {
            walker.helpers = static_cast<unsigned>(std::atoi(arguments[++index]));
        } else {
            root = arguments[index];
        }
    }
    if (root == nullptr) {
        std::fputs("usage: bench_walk_sizes [--helpers N] FOLDER\n", stderr);
        return 2;
    }
    vostrel::LinkSet links;
    const auto result = walker.walk(std::filesystem::absolute(root).native(), {}, {}, links);
    const long long made = allocations;
    const auto* measured = std::get_if<vostrel::Measured>(&result);
    if (measured == nullptr || !measured->totals.isComplete()) {
        std::fputs("bench_walk_sizes: the folder could not be measured whole\n", stderr);
        return 1;
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("bytes %lld files %lld allocations %lld peakKiB %ld\n",
                static_cast<long long>(measured->totals.allocatedBytes), static_cast<long long>(measured->totals.files),
                made, usage.ru_maxrss);
    return 0;
}
