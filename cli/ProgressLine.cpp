#include "cli/ProgressLine.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "base/PrintableText.h"
#include "base/UnicodeText.h"

namespace vostrel::cli {

namespace {

constexpr std::chrono::milliseconds interval{100};
constexpr const char* wipe = "\r\x1b[K";

std::size_t terminalWidth() {
    winsize size{};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return 80;
    return size.ws_col;
}

/// As much of the text as the terminal's line holds.
std::string fitted(const std::string& text, std::size_t width) {
    std::string out;
    std::size_t taken = 0;
    for (const auto character : graphemes(text)) {
        taken += columns(character);
        if (taken >= width) break;
        out += character;
    }
    return out;
}

}  // namespace

ProgressLine::ProgressLine(const GlobalOptions& options, std::function<std::string()> text)
    : describe(std::move(text)) {
    if (!options.noProgress && isatty(STDERR_FILENO) == 1) drawer = std::thread([this] { draw(); });
}

ProgressLine::~ProgressLine() {
    {
        const std::lock_guard guard(lock);
        isOver = true;
    }
    ended.notify_one();  // nobody waits for the next drawing to get the result
    if (drawer.joinable()) drawer.join();
}

void ProgressLine::draw() {
    bool isDrawn = false;
    std::unique_lock guard(lock);
    while (!ended.wait_for(guard, interval, [this] { return isOver; })) {
        const std::string line = fitted(printable(describe()), terminalWidth());
        std::fprintf(stderr, "%s%s", wipe, line.c_str());
        isDrawn = true;
    }
    if (isDrawn) std::fputs(wipe, stderr);
}

}  // namespace vostrel::cli
