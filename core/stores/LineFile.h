#pragma once

#include <expected>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "base/SystemError.h"
#include "platform/FileSync.h"
#include "stores/FileWriting.h"

namespace vostrel {

/// Brings what was written to an open file to the disk. Fails with the error number.
using FileSyncer = std::function<std::expected<void, int>(int openFile)>;

/// A file of lines that only grows. Several programs may append to it at once, and one of them may be killed, or the
/// disk run full, in the middle of a line: every line that was reported as written stays whole and on a line of its
/// own.
///
/// Appending holds an exclusive `flock` on the file. Holds no state between calls; any thread.
struct LineFile {
    /// Absolute.
    std::filesystem::path path;
    FileWriter writer = systemWrite;
    FileSyncer sync = syncFile;

    /// Adds one line, which holds no line break, and returns once it is on the disk, with the names of the file and of
    /// the folders that had to be made. A new file is the user's alone (mode 600). What a failure left of the line is
    /// cut off again. Fails for a link or anything else that is no regular file, for a file that would be too large to
    /// be read, and when another program has held it for ten seconds.
    [[nodiscard]] std::expected<void, SystemError> append(std::string_view line) const;

    [[nodiscard]] std::expected<std::string, SystemError> read() const;

    /// Whether it can be read, without doing so.
    [[nodiscard]] bool isReadable() const;

    /// Removes the file, unless somebody is appending to it just now: fails with `EWOULDBLOCK` then.
    [[nodiscard]] std::expected<void, SystemError> remove() const;
};

}  // namespace vostrel
