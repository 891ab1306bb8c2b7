#include "support/linux/SystemCalls.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <sstream>

// The functions of the C library that the program calls, standing before them. They ask the kernel themselves, so that
// nothing else that stands before the library, a sanitizer or a clock, is skipped or met twice.

namespace vostrel::test {

namespace {

template <class... Arguments>
long ask(long number, Arguments... arguments) {
    using Call = long (*)(long, ...);
    static const auto real = reinterpret_cast<Call>(::dlsym(RTLD_NEXT, "syscall"));
    return real(number, arguments...);
}

// ---- faults

std::atomic<CallFault*> present = nullptr;

/// What the environment asks for, made once.
std::unique_ptr<CallFault> faultOfEnvironment() {
    const char* wanted = std::getenv("VOSTREL_TEST_FAULT");
    if (wanted == nullptr) return nullptr;
    std::istringstream words(wanted);
    std::string call;
    int nth = 0;
    int error = 0;
    std::string lasting;
    words >> call >> nth >> error >> lasting;
    return std::make_unique<CallFault>(call, nth, error,
                                       lasting == "forever" ? CallFault::Lasting::forever : CallFault::Lasting::once);
}

/// Whether the call fails; `errno` says how. What takes room on a disk changes it as well.
bool fails(std::string_view call, std::string_view meansDisk = {}) {
    static const auto ofEnvironment = faultOfEnvironment();
    const int error = CallFault::errorOf(call, meansDisk);
    if (error != 0) errno = error;
    return error != 0;
}

// ---- the guard

[[noreturn]] void refuse(const std::string& path) {
    const std::string text = "A test would have removed or renamed " + path + ", outside its own folder.\n";
    ask(SYS_write, STDERR_FILENO, text.data(), text.size());
    std::abort();
}

/// Whether a path lies in a folder that a test made, or is a file in which the test framework keeps what is printed.
bool isOfTests(const std::string& path) {
    const auto inTemporaryFolder = [](const char* name) {
        return (std::filesystem::canonical(std::filesystem::temp_directory_path()) / name).native();
    };
    static const char* const named = std::getenv("VOSTREL_TEST_FOLDER");
    static const std::string folder = named != nullptr ? std::string(named) + "/" : inTemporaryFolder("vostrel-test-");
    static const std::string captured = inTemporaryFolder("gtest_captured_stream.");
    return path.starts_with(folder) || path.starts_with(captured);
}

/// Where an open folder really lies; nothing when its path is longer than the system can tell, as only tests make them.
std::string placeOf(int folder) {
    std::array<char, PATH_MAX> place{};
    const std::string link = folder == AT_FDCWD ? "/proc/self/cwd" : "/proc/self/fd/" + std::to_string(folder);
    const long length = ask(SYS_readlinkat, AT_FDCWD, link.c_str(), place.data(), place.size());
    return {place.data(), length < 0 ? 0 : static_cast<std::size_t>(length)};
}

/// Ends the program unless the entry, found as the kernel finds it, lies in a test's folder.
void guard(int folder, const char* path) {
    const int before = errno;
    std::string text = path;
    while (text.size() > 1 && text.back() == '/')
        text.pop_back();
    const auto slash = text.rfind('/');
    int holder = folder;
    if (slash != std::string::npos) {
        const std::string above = slash == 0 ? "/" : text.substr(0, slash);
        holder = static_cast<int>(ask(SYS_openat, folder, above.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        if (holder < 0 && (errno == EMFILE || errno == ENFILE || errno == ENOMEM)) refuse(text);
        if (holder < 0) return void(errno = before);  // and so the call itself fails
        text.erase(0, slash + 1);
    }
    const std::string place = placeOf(holder);
    if (slash != std::string::npos) ask(SYS_close, holder);
    if (!place.empty() && !isOfTests(place + "/" + text)) refuse(place + "/" + text);
    errno = before;
}

}  // namespace

CallFault::CallFault(std::string call, int nth, int error, Lasting lasting)
    : kind(std::move(call)), first(nth), code(error), lasts(lasting == Lasting::forever) {
    present.store(this);
}

CallFault::~CallFault() {
    present.store(nullptr);
}

int CallFault::errorOf(std::string_view call, std::string_view meansDisk) {
    CallFault* fault = present.load();
    if (fault == nullptr) return 0;
    const std::string_view kind = fault->kind;
    const bool isMeant =
        call == kind || (meansDisk == kind && !kind.empty()) || (kind == "durable" && meansDisk == "growing");
    return isMeant ? fault->meet() : 0;
}

int CallFault::meet() {
    const int number = ++count;
    if (number != first && !(lasts && number > first)) return 0;
    if (code == kill) ::kill(::getpid(), SIGKILL);
    return code;
}

}  // namespace vostrel::test

using namespace vostrel::test;

namespace {

int removeEntry(int folder, const char* path, int flags) {
    guard(folder, path);
    return fails("unlinkat", "durable") ? -1 : static_cast<int>(ask(SYS_unlinkat, folder, path, flags));
}

int renameEntry(int from, const char* path, int to, const char* newPath, unsigned flags) {
    guard(from, path);
    guard(to, newPath);
    if (fails("renameat2", "durable")) return -1;
    return static_cast<int>(ask(SYS_renameat2, from, path, to, newPath, flags));
}

int openEntry(int folder, const char* path, int flags, mode_t mode) {
    const bool fail = (flags & O_CREAT) != 0 ? fails("openat", "growing") : fails("openat");
    return fail ? -1 : static_cast<int>(ask(SYS_openat, folder, path, flags, mode));
}

int makeFolder(int folder, const char* path, mode_t mode) {
    return fails("mkdirat", "growing") ? -1 : static_cast<int>(ask(SYS_mkdirat, folder, path, mode));
}

/// The last argument of a call that opens and may make a file.
mode_t modeOf(int flags, va_list& arguments) {
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

}  // namespace

extern "C" {

int unlink(const char* path) noexcept {
    return removeEntry(AT_FDCWD, path, 0);
}
int unlinkat(int folder, const char* path, int flags) noexcept {
    return removeEntry(folder, path, flags);
}
int rmdir(const char* path) noexcept {
    return removeEntry(AT_FDCWD, path, AT_REMOVEDIR);
}
int remove(const char* path) noexcept {
    const int result = removeEntry(AT_FDCWD, path, 0);
    return result != 0 && errno == EISDIR ? removeEntry(AT_FDCWD, path, AT_REMOVEDIR) : result;
}
int rename(const char* path, const char* newPath) noexcept {
    return renameEntry(AT_FDCWD, path, AT_FDCWD, newPath, 0);
}
int renameat(int from, const char* path, int to, const char* newPath) noexcept {
    return renameEntry(from, path, to, newPath, 0);
}
int renameat2(int from, const char* path, int to, const char* newPath, unsigned flags) noexcept {
    return renameEntry(from, path, to, newPath, flags);
}
int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openEntry(AT_FDCWD, path, flags, mode);
}
int openat(int folder, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openEntry(folder, path, flags, mode);
}
int mkdir(const char* path, mode_t mode) noexcept {
    return makeFolder(AT_FDCWD, path, mode);
}
int mkdirat(int folder, const char* path, mode_t mode) noexcept {
    return makeFolder(folder, path, mode);
}
ssize_t write(int file, const void* bytes, size_t size) {
    return fails("write", "growing") ? -1 : ask(SYS_write, file, bytes, size);
}
ssize_t pwrite(int file, const void* bytes, size_t size, off_t at) {
    return fails("write", "growing") ? -1 : ask(SYS_pwrite64, file, bytes, size, at);
}
/// Nothing that a test can see depends on it, while a disk takes longer for it than for all the rest.
int fsync(int file) {
    return fails("fsync", "durable") ? -1 : std::min(0, ::fcntl(file, F_GETFD));
}
int ftruncate(int file, off_t size) noexcept {
    return fails("ftruncate", "durable") ? -1 : static_cast<int>(ask(SYS_ftruncate, file, size));
}
int flock(int file, int operation) noexcept {
    return fails("flock") ? -1 : static_cast<int>(ask(SYS_flock, file, operation));
}
int statx(int folder, const char* path, int flags, unsigned mask, struct statx* found) noexcept {
    return fails("statx") ? -1 : static_cast<int>(ask(SYS_statx, folder, path, flags, mask, found));
}
long syscall(long number, ...) noexcept {
    va_list given;
    va_start(given, number);
    std::array<long, 6> each{};
    for (long& argument : each)
        argument = va_arg(given, long);
    va_end(given);
    if (number == SYS_openat2 && fails("openat2")) return -1;
    if (number == SYS_getdents64 && fails("getdents64")) return -1;
    return ask(number, each[0], each[1], each[2], each[3], each[4], each[5]);
}

}  // extern "C"
