#pragma once

#include <filesystem>
#include <string>

namespace vostrel {

/// A rule's permission for one folder inside the Desktop or the Documents tree, which are protected otherwise.
///
/// It holds for that folder only: another folder of the same tree needs a rule of its own.
struct GuardException {
    enum class Tree { desktop, documents };

    Tree tree = Tree::documents;
    std::filesystem::path folder;
    /// The tree as shown to the user: "~/Documents".
    std::string treeDisplay;

    friend bool operator==(const GuardException&, const GuardException&) = default;
};

}  // namespace vostrel
