#include "filesystem/MarkIndex.h"

#include <algorithm>

#include "base/UnicodeText.h"

namespace vostrel {

MarkIndex::MarkIndex(const std::map<std::string, std::vector<std::string>>& marks) {
    for (const auto& [path, marksThere] : marks) {
        std::string key = keyOf(path);
        auto& known = names[key];
        known.insert(known.end(), marksThere.begin(), marksThere.end());
        for (; !key.empty(); key.resize(key.rfind('/')))
            holders.insert(key);
        holders.insert(key);
    }
}

std::string MarkIndex::keyOf(std::string_view path) {
    std::string key;
    while (!path.empty()) {
        const auto end = std::min(path.find('/'), path.size());
        if (end > 0) appendName(key, path.substr(0, end));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return key;
}

void MarkIndex::appendName(std::string& key, std::string_view name) {
    key += '/';
    appendFolded(key, name);
}

const std::vector<std::string>* MarkIndex::at(const std::string& key) const {
    const auto found = names.find(key);
    return found == names.end() ? nullptr : &found->second;
}

std::vector<std::string> MarkIndex::atOrBelow(const std::string& key) const {
    std::vector<std::string> found;
    for (auto mark = names.lower_bound(key); mark != names.end() && mark->first.starts_with(key); ++mark) {
        const bool isInside = mark->first.size() == key.size() || mark->first[key.size()] == '/';
        if (isInside) found.insert(found.end(), mark->second.begin(), mark->second.end());
    }
    return found;
}

}  // namespace vostrel
