#pragma once

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "spacemap/SpaceTree.h"

/// Maps made up for tests, written down as people think of them.
namespace vostrel::sample {

struct Branch {
    SpaceNode node;
    std::vector<Branch> below;
};

inline Branch branch(std::string name, SpaceNode::Kind kind, std::int64_t bytes) {
    Branch made;
    made.node.name = std::move(name);
    made.node.kind = kind;
    made.node.bytes = bytes;
    return made;
}
inline Branch file(std::string name, std::int64_t bytes) {
    Branch made = branch(std::move(name), SpaceNode::Kind::file, bytes);
    made.node.files = 1;
    return made;
}
inline Branch aggregate(std::int64_t bytes, std::int64_t entries) {
    Branch made = branch("", SpaceNode::Kind::aggregate, bytes);
    made.node.files = made.node.entries = entries;
    return made;
}
inline Branch marker(std::string name, UnreadableReason reason) {
    Branch made = branch(std::move(name), SpaceNode::Kind::folder, 0);
    made.node.unreadable = reason;
    const bool isLibrary = reason == UnreadableReason::mediaLibrary;
    made.node.leftOutLibraries = isLibrary ? 1 : 0;
    made.node.unreadableCount = isLibrary ? 0 : 1;
    made.node.notMeasuredCount = isLeftOutOnPurpose(reason) ? 1 : 0;
    return made;
}
/// With the sums of what is below it, in the order of a finished map.
inline Branch folder(std::string name, std::vector<Branch> below) {
    Branch made = branch(std::move(name), SpaceNode::Kind::folder, 0);
    std::ranges::stable_sort(below, [](const Branch& left, const Branch& right) {
        const bool isLast = right.node.kind == SpaceNode::Kind::aggregate;
        if ((left.node.kind == SpaceNode::Kind::aggregate) != isLast) return isLast;
        return left.node.bytes > right.node.bytes;
    });
    for (const Branch& child : below) {
        made.node.bytes += child.node.bytes;
        made.node.files += child.node.files;
        made.node.unreadableCount += child.node.unreadableCount;
        made.node.notMeasuredCount += child.node.notMeasuredCount;
        made.node.leftOutLibraries += child.node.leftOutLibraries;
    }
    made.below = std::move(below);
    return made;
}

inline SpaceTree treeOf(std::string rootPath, Branch root) {
    SpaceTree tree;
    tree.rootPath = std::move(rootPath);
    std::vector<Branch> waiting;
    waiting.push_back(std::move(root));
    tree.nodes.push_back(waiting.front().node);
    for (std::size_t index = 0; index < waiting.size(); ++index) {
        auto below = std::move(waiting[index].below);
        tree.nodes[index].childCount = static_cast<SpaceTree::Index>(below.size());
        if (!below.empty()) tree.nodes[index].firstChild = static_cast<SpaceTree::Index>(tree.nodes.size());
        for (Branch& child : below) {
            child.node.parent = static_cast<SpaceTree::Index>(index);
            tree.nodes.push_back(child.node);
            waiting.push_back(std::move(child));
        }
    }
    return tree;
}

/// A folder of files, folders, markers and aggregates of very different sizes, some of none.
inline Branch randomFolder(std::mt19937& random, int levels, std::string name = "data") {
    const auto below = [&](unsigned limit) { return static_cast<int>(random() % limit); };
    std::vector<Branch> children;
    for (int left = below(12); left > 0; --left) {
        const std::string child = "n" + std::to_string(left);
        const std::int64_t bytes = std::int64_t{1 + below(1000)} << below(30);
        const int kind = below(8);
        if (kind == 0) {
            children.push_back(marker(child, UnreadableReason::noPermission));
        } else if (kind < 5 && levels > 0) {
            children.push_back(randomFolder(random, levels - 1, child));
        } else {
            children.push_back(file(child, bytes));
        }
    }
    if (below(2) == 0) children.push_back(aggregate(below(3) == 0 ? 0 : std::int64_t{below(1000)} << below(30), 3));
    return folder(std::move(name), std::move(children));
}

}  // namespace vostrel::sample
