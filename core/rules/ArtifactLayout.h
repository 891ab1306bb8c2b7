#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Glob.h"

namespace vostrel {

/// Where a tool puts the files of its build folder: paths below the folder, each a line of name patterns with "/"
/// between. Anything that lies elsewhere is a person's.
///
/// "**" stands for any folders or none, and at the end for anything but a repository; "***" at the end lets
/// repositories pass as well. "PROGRAM" is a name beside which the list of what it was made of lies (`shop` and
/// `shop.d`), "SYSTEM" one of `systems`. "HASH" in a name are eight characters that no word or date is made of. A path
/// that ends with "/" is an empty folder.
class ArtifactLayout {
public:
    using Path = std::span<const std::string>;

    /// The systems that compilers build for; nothing in their names is free text.
    [[nodiscard]] static const std::vector<std::string>& systems();

    static ArtifactLayout compile(std::span<const std::string> lines);

    /// Whether a file may lie there, with these files in the same folder.
    [[nodiscard]] bool holdsFile(Path path, std::span<const std::string> beside) const;
    /// Whether a folder of that name may lie directly in the build folder.
    [[nodiscard]] bool holdsFolder(std::string_view name) const;
    /// Whether that folder may be a repository, or lie in one.
    [[nodiscard]] bool holdsRepository(Path folder) const;

private:
    struct Part {
        enum class Form { name, hashedName, program, nothing, anything, anythingAndRepositories };
        Form form = Form::name;
        Glob::Patterns name;
        std::string afterHash;

        [[nodiscard]] bool matches(std::string_view text, std::span<const std::string> beside) const;
    };
    using Line = std::vector<Part>;

    [[nodiscard]] static bool matches(std::span<const Part> line, Path path, std::span<const std::string> beside);
    [[nodiscard]] static Part partOf(std::string_view text);

    std::vector<Line> allowed;
};

}  // namespace vostrel
