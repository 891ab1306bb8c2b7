#include "spacemap/SpaceTree.h"

#include <algorithm>

#include "base/Checked.h"

namespace vostrel {

namespace {

/// Looks for broken rules in nodes that may be anything: no link is followed before it was checked.
class InvariantCheck {
public:
    explicit InvariantCheck(const SpaceTree& checked) : tree(checked) {}

    std::vector<std::string> problems() && {
        if (tree.nodes.empty()) return {"The tree: wrong root"};
        if (tree.root().parent != -1) report(0, ": wrong parent");
        claimed.resize(tree.nodes.size());
        claimed[0] = true;
        for (std::size_t index = 0; index < tree.nodes.size(); ++index)
            check(index);
        for (std::size_t index = 0; index < tree.nodes.size(); ++index) {
            if (!claimed[index]) report(index, ": wrong parent");
        }
        return std::move(found);
    }

private:
    void check(std::size_t index) {
        const SpaceNode& node = tree.nodes[index];
        if (node.childCount == 0) {
            const bool hasUnlistedBytes = node.isFolder() && node.detail == SpaceDetail::listed && node.bytes != 0;
            if (hasUnlistedBytes) reportSum(index, 0);
            return;
        }
        if (!node.isFolder()) report(index, ": only a folder has children");
        if (node.detail == SpaceDetail::summarized) report(index, ": summarized with children");
        if (hasSoundChildren(index)) checkChildren(index);
    }

    bool hasSoundChildren(std::size_t index) {
        const SpaceNode& node = tree.nodes[index];
        const auto size = static_cast<std::int64_t>(tree.nodes.size());
        // Children stand behind their folder, so that no chain of links can be a circle.
        if (node.firstChild <= static_cast<std::int64_t>(index) || node.firstChild >= size) {
            report(index, ": wrong firstChild");
            return false;
        }
        if (node.childCount < 0 || node.childCount > size - node.firstChild) {
            report(index, ": wrong childCount");
            return false;
        }
        return true;
    }

    void checkChildren(std::size_t index) {
        const SpaceNode& node = tree.nodes[index];
        const auto first = static_cast<std::size_t>(node.firstChild);
        const std::size_t end = first + static_cast<std::size_t>(node.childCount);
        std::int64_t sum = 0;
        std::size_t aggregates = 0;
        for (std::size_t child = first; child < end; ++child) {
            const SpaceNode& below = tree.nodes[child];
            if (claimed[child] || below.parent != static_cast<std::int64_t>(index)) report(child, ": wrong parent");
            claimed[child] = true;
            sum = saturatingAdd(sum, below.bytes);
            const bool isAggregate = below.kind == SpaceNode::Kind::aggregate;
            aggregates += isAggregate ? 1 : 0;
            if (child == first || isAggregate) continue;
            const SpaceNode& before = tree.nodes[child - 1];
            if (before.kind == SpaceNode::Kind::aggregate) {
                report(index, ": the aggregate is not last");
            } else if (before.bytes < below.bytes) {
                report(index, ": not largest first");
            }
        }
        if (aggregates > 1) report(index, ": two aggregates");
        if (sum != node.bytes) reportSum(index, sum);
    }

    void report(std::size_t index, std::string_view text) {
        const std::string& name = tree.nodes[index].name;
        found.push_back("Node " + std::to_string(index) + (name.empty() ? "" : " \"" + name + "\"") +
                        std::string(text));
    }
    void reportSum(std::size_t index, std::int64_t sum) {
        report(index, ": children add up to " + std::to_string(sum) + ", the folder says " +
                          std::to_string(tree.nodes[index].bytes));
    }

    const SpaceTree& tree;
    std::vector<bool> claimed;  // it is a child of a folder
    std::vector<std::string> found;
};

}  // namespace

std::ranges::iota_view<SpaceTree::Index, SpaceTree::Index> SpaceTree::children(Index index) const {
    const SpaceNode& node = at(index);
    return {node.firstChild, node.firstChild + node.childCount};
}

std::vector<SpaceTree::Index> SpaceTree::ancestors(Index index) const {
    std::vector<Index> above;
    for (Index folder = at(index).parent; folder >= 0; folder = at(folder).parent)
        above.push_back(folder);
    std::ranges::reverse(above);
    return above;
}

std::optional<std::string> SpaceTree::path(Index index) const {
    if (at(index).kind == SpaceNode::Kind::aggregate) return std::nullopt;
    if (index == 0) return rootPath;
    std::string joined = rootPath == "/" ? "" : rootPath;
    for (const Index folder : ancestors(index)) {
        if (folder != 0) joined += "/" + at(folder).name;
    }
    return joined + "/" + at(index).name;
}

std::optional<std::string> SpaceTree::userPath(Index index) const {
    auto known = path(index);
    if (!known || !known->starts_with(dataVolume)) return known;
    if (known->size() == dataVolume.size()) return "/";
    if ((*known)[dataVolume.size()] == '/') known->erase(0, dataVolume.size());
    return known;
}

std::vector<std::string> SpaceTree::invariantProblems() const {
    return InvariantCheck(*this).problems();
}

}  // namespace vostrel
