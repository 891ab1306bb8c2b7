#include "spacemap/SpaceCut.h"

#include "base/UnicodeText.h"

namespace vostrel {

namespace {

/// The normalised name in memory that serves again and again: equal sizes are common, and names are many.
std::string_view normalised(std::string_view name, std::string& memory) {
    memory.clear();
    appendFolded(memory, name);
    return memory;
}

}  // namespace

bool SpaceCut::folds(std::int64_t entryBytes, std::string_view entryName) const {
    if (entryBytes != bytes || name == lastName) return entryBytes < bytes;
    thread_local std::string memory;
    return normalised(entryName, memory) > name;
}

bool isShownBefore(std::int64_t bytes, std::string_view name, std::int64_t otherBytes, std::string_view otherName) {
    if (bytes != otherBytes) return bytes > otherBytes;
    thread_local std::string memory;
    thread_local std::string otherMemory;
    const int order = normalised(name, memory).compare(normalised(otherName, otherMemory));
    return order != 0 ? order < 0 : name < otherName;
}

}  // namespace vostrel
