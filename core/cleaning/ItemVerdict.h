#pragma once

#include <string>

#include "cleaning/ItemOutcome.h"

namespace vostrel {

/// Why an item is left alone.
struct ItemVerdict {
    ItemOutcome::Status status = ItemOutcome::Status::changed;
    std::string message;

    /// It may not be removed.
    static ItemVerdict refused(std::string_view message) {
        return {ItemOutcome::Status::refused, std::string(message)};
    }
    /// It is not what the preview saw.
    static ItemVerdict changed(std::string_view message) {
        return {ItemOutcome::Status::changed, std::string(message)};
    }

    friend bool operator==(const ItemVerdict&, const ItemVerdict&) = default;
};

}  // namespace vostrel
