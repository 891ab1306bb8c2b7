#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <tuple>

#include "filesystem/FilesystemFields.h"
#include "stores/JSONCoding.h"

namespace vostrel {

/// What a failed comparison shows of the results of a walk.
inline void PrintTo(const WalkTotals& totals, std::ostream* out) {
    *out << JSONCoding::encoder(JSONLayout::compact).encode(totals).value();
}

inline void PrintTo(const Measured& measured, std::ostream* out) {
    *out << testing::PrintToString(std::tie(measured.totals, measured.marks, measured.skipped));
}

}  // namespace vostrel
