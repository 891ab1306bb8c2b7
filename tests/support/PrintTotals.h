#pragma once

#include <ostream>

#include "filesystem/FilesystemFields.h"
#include "stores/JSONCoding.h"

namespace vostrel {

/// What a failed comparison shows of the results of a walk.
inline void PrintTo(const WalkTotals& totals, std::ostream* out) {
    *out << JSONCoding::encoder(JSONLayout::compact).encode(totals).value();
}

inline void PrintTo(const Measured& measured, std::ostream* out) {
    PrintTo(measured.totals, out);
    for (const auto& [name, totals] : measured.marks)
        PrintTo(totals, &(*out << "\n  mark " << name << ": "));
    for (const auto& [name, reason] : measured.skipped) {
        const auto* unreadable = std::get_if<Unreadable>(&reason);
        *out << "\n  skipped " << name << ": " << (unreadable ? shownText(unreadable->reason) : "a link");
    }
}

}  // namespace vostrel
