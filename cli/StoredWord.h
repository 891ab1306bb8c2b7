#pragma once

#include <expected>
#include <string>
#include <string_view>

#include "cli/Amounts.h"
#include "stores/JSONRecord.h"

namespace vostrel::cli {

/// One of the words under which an enumeration is stored.
template <class Enumeration>
[[nodiscard]] Parsed<Enumeration> parseWord(std::string_view text) {
    std::string words;
    for (const auto& entry : JSONNames<Enumeration>::list) {
        if (entry.name == text) return entry.value;
        words += words.empty() ? "" : ", ";
        words += entry.name;
    }
    return std::unexpected("one of " + words + " is needed");
}

}  // namespace vostrel::cli
