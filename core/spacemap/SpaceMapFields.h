#pragma once

#include <array>
#include <expected>
#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>

#include "filesystem/FilesystemFields.h"
#include "spacemap/HiddenSpace.h"
#include "spacemap/SpaceTree.h"
#include "stores/JSONCoder.h"
#include "stores/JSONRecord.h"

namespace vostrel {

/// How a map is written as JSON. A name is written as paths are, for it is bytes.

template <>
struct JSONNames<SpaceNode::Kind> {
    static constexpr std::array list{
        JSONName{SpaceNode::Kind::folder, "folder"},
        JSONName{SpaceNode::Kind::file, "file"},
        JSONName{SpaceNode::Kind::aggregate, "aggregate"},
    };
};

template <>
struct JSONNames<SpaceDetail> {
    static constexpr std::array list{
        JSONName{SpaceDetail::listed, "listed"},
        JSONName{SpaceDetail::summarized, "summarized"},
    };
};

template <>
struct JSONNames<SpaceTree::Ending> {
    static constexpr std::array list{
        JSONName{SpaceTree::Ending::complete, "complete"},
        JSONName{SpaceTree::Ending::deadline, "deadline"},
        JSONName{SpaceTree::Ending::cancelled, "cancelled"},
    };
};

template <>
struct JSONFields<SpaceTree::Stats> {
    static constexpr std::array list{
        jsonField<&SpaceTree::Stats::filesSeen>("filesSeen"),
        jsonField<&SpaceTree::Stats::foldersRead>("foldersRead"),
        jsonField<&SpaceTree::Stats::linksNotFollowed>("linksNotFollowed"),
        jsonField<&SpaceTree::Stats::entriesFolded>("entriesFolded"),
        jsonField<&SpaceTree::Stats::peakKeptNodes>("peakKeptNodes"),
        jsonField<&SpaceTree::Stats::compactionPasses>("compactionPasses"),
    };
};

template <>
struct JSONFields<HiddenSpace> {
    static constexpr std::array list{
        jsonField<&HiddenSpace::used>("used"),
        jsonField<&HiddenSpace::measured>("measured"),
        jsonField<&HiddenSpace::measuredIsComplete>("measuredIsComplete"),
        jsonField<&HiddenSpace::hidden>("hidden"),
        jsonField<&HiddenSpace::purgeable>("purgeable"),
        jsonField<&HiddenSpace::swapFiles>("swapFiles"),
        jsonField<&HiddenSpace::localSnapshotCount>("localSnapshotCount"),
        jsonField<&HiddenSpace::purgeableMayBeInFolders>("purgeableMayBeInFolders"),
        jsonField<&HiddenSpace::other>("other"),
        jsonField<&HiddenSpace::librariesLeftOut>("librariesLeftOut"),
        jsonField<&HiddenSpace::measuredMayCountSharedSpace>("measuredMayCountSharedSpace"),
    };
};

template <>
struct JSONCoder<SpaceTree::RootProblem> {
    static JSONValue encode(const SpaceTree::RootProblem& problem);
};

template <>
struct JSONCoder<SpaceNode> {
    static JSONValue encode(const SpaceNode& node);
};

/// The whole map, and what a disk hides where that is known, as one text for people. It is handed to `write` node by
/// node: as one value it would take more memory than the scan.
[[nodiscard]] std::expected<void, JSONError> writeDocument(const SpaceTree& tree,
                                                           const std::optional<HiddenSpace>& hidden,
                                                           const std::function<void(std::string_view)>& write);

}  // namespace vostrel
