// Runs a command with its output thrown away and writes what it took to a file, one line:
// wall seconds, processor seconds, peak memory in KiB, exit status.
//
// usage: bench_timed OUTPUT COMMAND [ARGUMENT…]
//
// It is this small because a process inherits the peak memory of the one that started it.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>

namespace {

[[noreturn]] void become(char** command) {
    const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (const int stream : {0, 1, 2})
        dup2(nothing, stream);
    execvp(command[0], command);
    _exit(127);
}

double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 3) return 2;
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) become(arguments + 2);
    int status = 0;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) != child) return 1;
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;

    std::FILE* output = std::fopen(arguments[1], "we");
    if (output == nullptr) return 1;
    std::fprintf(output, "%.6f %.6f %ld %d\n", wall.count(), seconds(usage.ru_utime) + seconds(usage.ru_stime),
                 usage.ru_maxrss, WIFEXITED(status) ? WEXITSTATUS(status) : 128);
    return std::fclose(output) == 0 ? 0 : 1;
}
