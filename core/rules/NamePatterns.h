#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace vostrel::artifacts {

// How the tables of build folders are put together.

/// Patterns of names, or of paths made of them.
using Names = std::vector<std::string>;

[[nodiscard]] Names joined(std::initializer_list<Names> lists);
/// Each of the folders with each of the paths below it.
[[nodiscard]] Names below(const Names& folders, const Names& paths);
[[nodiscard]] std::string repeated(std::string_view character, int count);
/// A pattern of so many hexadecimal digits.
[[nodiscard]] std::string digits(int count);

}  // namespace vostrel::artifacts
