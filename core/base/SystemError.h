#pragma once

#include <cerrno>
#include <filesystem>
#include <string>

namespace vostrel {

/// A failed system call: its error number, what was being done ("open", "rename") and to what.
struct SystemError {
    int code = 0;
    std::string operation;
    std::filesystem::path path;

    /// "Could not open /a/b: Permission denied".
    [[nodiscard]] std::string description() const;

    friend bool operator==(const SystemError&, const SystemError&) = default;
};

/// Whether a system call failed because nothing has that name: neither the last part of the path nor, as a folder, one
/// of those before it.
[[nodiscard]] inline bool isMissing(int error) {
    return error == ENOENT || error == ENOTDIR;
}

/// Whether opening a path without following links failed because it no longer leads where it did.
[[nodiscard]] inline bool isAnotherPath(int error) {
    return isMissing(error) || error == ELOOP;
}

}  // namespace vostrel
