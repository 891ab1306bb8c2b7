#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include "cli/CommandLine.h"

namespace vostrel::cli {

/// One line on standard error that says how far long work is, drawn anew a few times a second and wiped away at the
/// end.
///
/// Only ever drawn on a terminal, never with --no-progress, and not before the work has taken a moment. `describe` is
/// called on a thread of the line's own.
class ProgressLine {
public:
    ProgressLine(const GlobalOptions& options, std::function<std::string()> describe);
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;
    ~ProgressLine();

private:
    void draw();

    std::function<std::string()> describe;
    std::mutex lock;
    std::condition_variable ended;
    bool isOver = false;
    std::thread drawer;
};

}  // namespace vostrel::cli
