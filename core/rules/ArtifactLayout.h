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
/// "**" stands for any folders or none, and at the end for anything but a repository and certain names; "***" at the
/// end for a repository with all that is in it. "PROGRAM" is a program or library beside which the list of what it was
/// made of lies
/// (`shop` and `shop.d`), "LIST" that list beside one of them, "SYSTEM" one of `systems`. "HASH" in a name are eight
/// characters that no words or dates are made of. A path that ends with "/" is an empty folder.
class ArtifactLayout {
public:
    class Place;

    /// The systems that compilers build for; nothing in their names is free text.
    [[nodiscard]] static const std::vector<std::string>& systems();

    /// Files that match `notInRuns` may only lie where a line's last part names them.
    static ArtifactLayout compile(std::span<const std::string> lines, std::span<const std::string> notInRuns);

    /// The build folder itself. The layout outlives its places.
    [[nodiscard]] Place top() const;

private:
    struct Part {
        enum class Form { name, hashedName, program, list, nothing, anything, anythingAndRepositories };
        Form form = Form::name;
        Glob::Patterns name;
        std::string afterHash;

        [[nodiscard]] bool isRun() const { return form == Form::anything || form == Form::anythingAndRepositories; }
        [[nodiscard]] bool matches(std::string_view text, std::span<const std::string> beside) const;
    };
    using Line = std::vector<Part>;

    [[nodiscard]] static Part partOf(std::string_view text);

    std::vector<Line> allowed;
    Glob::Patterns onlyNamed;
};

/// A folder in the build folder: what of each line lies below it.
class ArtifactLayout::Place {
public:
    [[nodiscard]] Place within(std::string_view folder) const;

    /// Whether a file may lie directly in it, with these files, sorted, in the same folder.
    [[nodiscard]] bool holdsFile(std::string_view name, std::span<const std::string> beside) const;
    /// Whether a folder of that name may lie directly in it.
    [[nodiscard]] bool holdsFolder(std::string_view name) const { return !within(name).rests.empty(); }
    /// Whether it may be a repository, or lie in one.
    [[nodiscard]] bool mayBeRepository() const;

private:
    friend class ArtifactLayout;
    using Rest = std::span<const Part>;

    explicit Place(const ArtifactLayout& of) : layout(&of) {}
    void add(Rest rest);

    const ArtifactLayout* layout;
    std::vector<Rest> rests;
};

}  // namespace vostrel
