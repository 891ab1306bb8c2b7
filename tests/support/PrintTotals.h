#pragma once

#include <ostream>

#include "filesystem/WalkTotals.h"

namespace vostrel {

/// What a failed comparison shows of the results of a walk.
inline void PrintTo(const WalkTotals& totals, std::ostream* out) {
    *out << totals.allocatedBytes << " bytes, " << totals.files << " files, " << totals.unreadableFolders
         << " unreadable";
    if (totals.unreadableReason) *out << " (" << shownText(*totals.unreadableReason) << ")";
    *out << ", " << totals.leftOutLibraries << " libraries, " << totals.linksSkipped << " links, "
         << totals.otherVolumes << " other volumes" << (totals.stopped ? ", stopped" : "");
}

inline void PrintTo(const Measured& measured, std::ostream* out) {
    PrintTo(measured.totals, out);
    for (const auto& [name, totals] : measured.marks) {
        *out << "\n  mark " << name << ": ";
        PrintTo(totals, out);
    }
    for (const auto& [name, reason] : measured.skipped) {
        const auto* unreadable = std::get_if<Unreadable>(&reason);
        *out << "\n  skipped " << name << ": " << (unreadable ? shownText(unreadable->reason) : "a link");
    }
}

}  // namespace vostrel
