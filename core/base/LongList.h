#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace vostrel {

/// Adds to a list that may come to hold a million elements. It grows fourfold, so that copying it as it grows touches a
/// third of its memory once more and not all of it; memory that is never touched costs nothing.
template <class Element>
void appendToLongList(std::vector<Element>& list, Element element) {
    constexpr std::size_t growth = 4;
    constexpr std::size_t least = 16;
    if (list.size() == list.capacity()) list.reserve(list.empty() ? least : growth * list.size());
    list.push_back(std::move(element));
}

}  // namespace vostrel
