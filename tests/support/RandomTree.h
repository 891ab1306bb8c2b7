#pragma once

#include <algorithm>
#include <cerrno>
#include <random>
#include <string>
#include <vector>

#include "filesystem/AccessDecision.h"
#include "support/FakeFolderTree.h"

namespace vostrel::test {

struct Dice {
    std::mt19937& random;

    std::size_t below(std::size_t end) { return random() % end; }
    bool oneIn(std::size_t chances) { return below(chances) == 0; }
    template <class Value, std::size_t count>
    Value oneOf(const Value (&values)[count]) {
        return values[below(count)];
    }
    int error() { return oneOf({EACCES, EPERM, EIO, ENOENT, ENOTDIR, EDEADLK}); }
};

inline void spoil(FakeFolderTree::Node& folder, Dice& dice) {
    using Node = FakeFolderTree::Node;
    const std::size_t fault = dice.below(7);
    folder.entriesBeforeError = dice.below(6);
    if (fault < 3) folder.*dice.oneOf({&Node::openError, &Node::statusError, &Node::entryError}) = dice.error();
    if (fault == 3) folder.listingError = dice.error();
    if (fault == 4) folder.mountStatus = dice.oneOf({entryIsMountPoint, entryTriggersMount});
    if (fault == 5) folder.status.device = 2;
    if (fault == 6) folder.status.mount = 2;
}

/// A tree below "/r" of about `folders` folders, the same for the same seed: deep and wide places, hard links across
/// folders, symbolic links, pipes and devices, mounts of every kind, and every fault that a folder, the root too, or an
/// entry can have.
inline void plantRandomTree(FakeFolderTree& tree, std::mt19937& random, int folders) {
    Dice dice{random};
    std::vector<std::string> paths{"/r"};
    std::vector<std::string> files;
    if (dice.oneIn(8)) spoil(tree.folder("/r"), dice);
    tree.entriesPerRead = 1 + dice.below(5);
    for (int made = 0; made < folders; ++made) {
        const std::size_t recent = std::min<std::size_t>(paths.size(), 8);
        const auto& parent =
            dice.oneIn(2) ? paths[paths.size() - 1 - dice.below(recent)] : paths[dice.below(paths.size())];
        paths.push_back(parent + "/d" + std::to_string(made));
        auto& folder = tree.folder(paths.back());
        if (dice.oneIn(15)) spoil(folder, dice);
        for (std::size_t left = dice.below(5); left > 0; --left) {
            const std::string path = paths.back() + "/f" + std::to_string(left);
            if (dice.oneIn(12)) {
                tree.link(path).status.allocated = 512;
            } else if (!files.empty() && dice.oneIn(6)) {
                tree.hardLink(path, files[dice.below(files.size())]);
            } else {
                tree.file(path, static_cast<std::int64_t>(dice.below(64)) * 512);
                files.push_back(path);
            }
            if (dice.oneIn(40)) tree.at(path).entryError = dice.error();
            using enum EntryType;
            if (dice.oneIn(40)) tree.file(path).status.type = dice.oneOf({socket, fifo, blockDevice, none});
        }
    }
}

/// One folder in so many is closed, by its path, for one of two reasons.
inline AccessDecision closesSome(const std::string& path) {
    const auto number = std::hash<std::string>()(path) % 40;
    if (number > 1) return {};
    return {number == 0 ? UnreadableReason::mediaLibrary : UnreadableReason::systemPlace};
}

}  // namespace vostrel::test
