#include "rules/NamePatterns.h"

#include <fmt/format.h>

namespace vostrel::artifacts {

Names joined(std::initializer_list<Names> lists) {
    Names all;
    for (const Names& list : lists)
        all.insert(all.end(), list.begin(), list.end());
    return all;
}

Names below(const Names& folders, const Names& paths) {
    Names all;
    for (const std::string& folder : folders) {
        for (const std::string& path : paths)
            all.push_back(fmt::format("{}/{}", folder, path));
    }
    return all;
}

std::string repeated(std::string_view character, int count) {
    std::string pattern;
    while (count-- > 0)
        pattern += character;
    return pattern;
}

std::string digits(int count) {
    return repeated("[0-9a-f]", count);
}

}  // namespace vostrel::artifacts
