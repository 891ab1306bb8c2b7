#pragma once

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

}  // namespace vostrel
