#include "spacemap/SpaceCut.h"

#include <algorithm>

#include "base/UnicodeText.h"

namespace vostrel {

namespace {

/// The normalised name in memory that serves again and again: equal sizes are common, and names are many.
std::string_view normalised(std::string_view name, std::string& memory) {
    memory.clear();
    appendFolded(memory, name);
    return memory;
}

char lowered(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

/// Negative, zero or positive, as the normalised names stand to each other.
int compared(std::string_view name, std::string_view other) {
    if (isASCII(name) && isASCII(other)) {
        const auto [left, right] =
            std::ranges::mismatch(name, other, [](char one, char two) { return lowered(one) == lowered(two); });
        if (left == name.end() || right == other.end()) return (left != name.end()) - (right != other.end());
        return lowered(*left) < lowered(*right) ? -1 : 1;
    }
    thread_local std::string memory;
    thread_local std::string otherMemory;
    return normalised(name, memory).compare(normalised(other, otherMemory));
}

}  // namespace

bool SpaceCut::folds(std::int64_t entryBytes, std::string_view entryName) const {
    if (entryBytes != bytes || name == lastName) return entryBytes < bytes;
    thread_local std::string memory;
    return normalised(entryName, memory) > name;
}

bool isShownBefore(std::int64_t bytes, std::string_view name, std::int64_t otherBytes, std::string_view otherName) {
    if (bytes != otherBytes) return bytes > otherBytes;
    const int order = compared(name, otherName);
    return order != 0 ? order < 0 : name < otherName;
}

}  // namespace vostrel
