#pragma once

#include <string>
#include <variant>

#include "base/SystemError.h"
#include "stores/JSONError.h"

namespace vostrel {

/// Why a file could not be saved. The file that was there before is untouched, and nothing else was left behind.
struct StoreError {
    enum class Failure {
        directoryNotCreated,    ///< the folder is absent and cannot be made
        encoding,               ///< the value holds what JSON cannot say
        fileWriteNoPermission,  ///< no file can be made in the folder
        fileWriteUnknown,       ///< anything later: permissions, writing, syncing, putting it in place
    };

    Failure failure = Failure::fileWriteUnknown;
    std::variant<SystemError, JSONError> cause;

    /// "Could not write /a/rules.json: No space left on device".
    [[nodiscard]] std::string description() const;
};

}  // namespace vostrel
