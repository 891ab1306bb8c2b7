#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Glob.h"

namespace vostrel {

/// What else lies in a folder. Both lists are sorted.
struct ArtifactNeighbours {
    std::span<const std::string> files;
    std::span<const std::string> folders;
    /// The folder's own name, where that is known.
    std::string_view around = {};
};

/// Where a tool puts the files of its build folder: paths below the folder, each a line of name patterns with "/"
/// between. Anything that lies elsewhere is a person's.
///
/// "**" stands for any folders or none, and at the end for anything but a repository and certain names. A folder that
/// lines name outright belongs to those lines alone, not to patterns and runs. A repository may lie where a line names
/// its "HEAD". A path that ends with "/" is an empty folder.
///
/// Whole names: "PROGRAM" is a program or library beside which the list of what it was made of lies (`shop` and
/// `shop.d`), "LIST" that list beside one of them, "PRODUCT" a program without an ending beside what else Swift makes
/// of it (`shop` and `shop.product`), "STEM" the folder's own name without its ending (`shop` in `shop.app`), "SYSTEM"
/// one of `systems`. Parts of names: "HASH" are eight characters as bundlers put them into names, "HEX" sixteen
/// hexadecimal digits or more, "WORD" letters, digits, "-" and "_". Case counts.
class ArtifactLayout {
public:
    class Place;

    /// The systems that compilers build for; nothing in their names is free text.
    [[nodiscard]] static const std::vector<std::string>& systems();

    /// Files that match `notInRuns` may only lie where a line's last part names them; "BARE" is a name without an
    /// ending.
    static ArtifactLayout compile(std::span<const std::string> lines, std::span<const std::string> notInRuns);

    /// The build folder itself. The layout outlives its places.
    [[nodiscard]] Place top() const;

private:
    struct Part {
        enum class Form {
            name,
            pattern,
            hashed,
            hexadecimal,
            wordly,
            program,
            list,
            product,
            stem,
            nothing,
            anything,
        };
        Form form = Form::pattern;
        /// The whole name, or what stands before the part that is told by its characters.
        Glob::ExactPatterns name;
        std::string before;
        std::string after;

        [[nodiscard]] bool matches(std::string_view text, const ArtifactNeighbours& beside) const;
        [[nodiscard]] bool surrounds(std::string_view text, std::size_t least, bool (*isPart)(char)) const;
    };
    /// What lines have in common so far, and how they go on.
    struct Node {
        std::string text;
        Part part;
        bool isEnd = false;
        std::vector<Node> below;

        [[nodiscard]] Node& next(std::string_view name);
    };

    [[nodiscard]] static Part partOf(std::string_view text);

    Node root;
    Glob::Patterns onlyNamed;
    bool bareNamesOnlyNamed = false;
};

/// A folder in the build folder: what of each line lies below it.
class ArtifactLayout::Place {
public:
    [[nodiscard]] Place within(std::string_view folder) const;

    [[nodiscard]] bool holdsFile(std::string_view name, const ArtifactNeighbours& beside) const;
    /// Whether a folder of that name may lie directly in it.
    [[nodiscard]] bool holdsFolder(std::string_view name) const { return !within(name).nodes.empty(); }
    /// Whether it may be a repository, or hold the one of its files.
    [[nodiscard]] bool mayBeRepository() const;

private:
    friend class ArtifactLayout;
    explicit Place(const ArtifactLayout& of) : layout(&of) {}
    void add(const Node& node);

    const ArtifactLayout* layout;
    std::string ownName;
    /// What may lie in the folder.
    std::vector<const Node*> nodes;
};

}  // namespace vostrel
