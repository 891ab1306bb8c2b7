// Writes pages of made-up maps into the folder that is named, and beside them what the library says of the same maps,
// for a browser's answers to be held against.

#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>

#include "base/PrintableText.h"
#include "base/SpaceFormat.h"
#include "spacemap/SampleTree.h"
#include "spacemap/SpacePage.h"
#include "spacemap/Sunburst.h"
#include "stores/JSONCoding.h"

namespace vostrel {
namespace {

using namespace sample;

constexpr std::int64_t gigabyte = 1'000'000'000;

/// A home as many are, with names that a page could stumble over.
SpaceTree homeOfSomebody() {
    const auto shrunk = [](Branch made) {
        made.node.stopped = true;
        return made;
    };
    return treeOf(
        "/home/ada",
        folder("ada",
               {folder("Videos",
                       {folder("Iceland 2024", {file("glacier.mov", 48 * gigabyte), file("geysir.mov", 31 * gigabyte),
                                                file("harbour at night.mov", 22 * gigabyte), aggregate(gigabyte, 14)}),
                        file("wedding, uncut.mkv", 36 * gigabyte), file("talk.mp4", 9 * gigabyte)}),
                folder(".cache", {folder("browser", {folder("Cache", {aggregate(17 * gigabyte, 41'204)}),
                                                     file("index", gigabyte / 2)}),
                                  folder("pip", {aggregate(6 * gigabyte, 2210)}), shrunk(folder("thumbnails", {}))}),
                folder("Code", {folder("engine", {folder("target", {folder("debug", {aggregate(29 * gigabyte, 9000)}),
                                                                    folder("release", {file("engine", 4 * gigabyte)})}),
                                                  folder(".git", {file("pack-1a2b.pack", 3 * gigabyte)})}),
                                folder("site", {folder("node_modules", {aggregate(5 * gigabyte, 61'000)})})}),
                folder("Downloads",
                       {file("disk image.iso", 6 * gigabyte), file("archive.zip", 2 * gigabyte),
                        file("<img src=x onerror=document.title='bad'>", gigabyte), aggregate(gigabyte / 3, 120)}),
                folder("<script>document.title='bad'</script>",
                       {file("a & b \"quoted\" 'name'", gigabyte), file("\xff\u202Ename.txt", gigabyte / 4)}),
                folder("Music", {marker("Media Library", UnreadableReason::mediaLibrary),
                                 folder("recordings", {file("long take.wav", 3 * gigabyte)})}),
                marker("lost+found", UnreadableReason::noPermission),
                marker("backup disk", UnreadableReason::otherDisk), aggregate(gigabyte * 2, 5310)}));
}

SpaceTree randomTree(unsigned seed) {
    std::mt19937 random(seed);
    return treeOf("/", folder("", {randomFolder(random, 6, "System"), randomFolder(random, 6, "more"),
                                   folder("kept", {folder("on", {file("disk", 1'250'000)})})}));
}

JSONValue arcsOf(const SpaceTree& tree, SpaceTree::Index focus) {
    constexpr const char* patterns[] = {"solid", "smaller", "partlyMeasured", "notMeasured"};
    JSONArray arcs;
    for (const SunburstArc& arc : Sunburst::of(tree, focus).arcs) {
        arcs.emplace_back(JSONArray{arc.node, arc.count, arc.bytes, arc.ring, arc.start, arc.end,
                                    arc.hue ? JSONValue(*arc.hue) : JSONValue(), arc.shade,
                                    patterns[static_cast<std::size_t>(arc.pattern)]});
    }
    return arcs;
}

/// All that the page's script works out by itself, as the library has it.
JSONValue expectedOf(const SpaceTree& tree) {
    JSONArray drawings;
    JSONArray paths;
    JSONArray sizes;
    for (SpaceTree::Index node = 0; node < static_cast<SpaceTree::Index>(tree.nodes.size()); ++node) {
        if (tree.at(node).childCount > 0 && drawings.size() < 40)
            drawings.emplace_back(JSONArray{node, arcsOf(tree, node)});
        if (tree.at(node).kind != SpaceNode::Kind::aggregate)
            paths.emplace_back(JSONArray{node, printable(*tree.userPath(node))});
        sizes.emplace_back(JSONArray{tree.at(node).bytes, SpaceFormat::bytes(tree.at(node).bytes)});
    }
    for (std::int64_t bytes = 1; bytes < INT64_MAX / 40; bytes = bytes * 5 / 2) {
        for (const std::int64_t near : {bytes, bytes / 8 * 10, 999'499'999 + bytes, std::int64_t{1'250'000} + bytes})
            sizes.emplace_back(JSONArray{near, SpaceFormat::bytes(near)});
    }
    JSONArray shares;
    for (const double share : {-1.0, 0.0, 0.001, 0.01, 0.29, 0.57, 0.999, 1.0})
        shares.emplace_back(JSONArray{share, SpaceFormat::percent(share)});
    return JSONObject{{"drawings", drawings}, {"paths", paths}, {"sizes", sizes}, {"shares", shares}};
}

void writeTo(const std::filesystem::path& folder, const std::string& name, const SpaceTree& tree) {
    const std::string remarks[] = {"11 GB more are in use that no scan can see."};
    std::ofstream(folder / (name + ".html")) << spacePage(tree, remarks);
    if (const auto expected = JSONCoding::encoder(JSONLayout::compact).encode(expectedOf(tree)))
        std::ofstream(folder / (name + ".json")) << *expected;
}

}  // namespace
}  // namespace vostrel

int main(int count, char** arguments) {
    if (count != 2) {
        std::cerr << "usage: sample_pages FOLDER\n";
        return 2;
    }
    vostrel::writeTo(arguments[1], "home", vostrel::homeOfSomebody());
    for (const unsigned seed : {1U, 2U, 3U})
        vostrel::writeTo(arguments[1], "random" + std::to_string(seed), vostrel::randomTree(seed));
    return 0;
}
