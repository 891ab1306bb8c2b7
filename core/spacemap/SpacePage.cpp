#include "spacemap/SpacePage.h"

#include <string_view>

#include "base/LocalTime.h"
#include "base/PrintableText.h"
#include "spacemap/NodeSentences.h"
#include "spacemap/Sunburst.h"
#include "stores/JSONCoding.h"

namespace vostrel {

/// SpacePage.html, which the build puts into the library.
extern const std::string_view spacePageTemplate;

namespace {

/// d: folder, D: folder with something unmeasured in it, f: file, a: aggregate, m: marker.
char kindLetter(const SpaceNode& node) {
    if (node.isMarker()) return 'm';
    if (node.kind == SpaceNode::Kind::aggregate) return 'a';
    if (!node.isComplete()) return 'D';
    return node.isFolder() ? 'd' : 'f';
}

std::string joined(const std::vector<std::string>& sentences) {
    std::string text;
    for (const std::string& sentence : sentences)
        text += (text.empty() ? "" : " ") + sentence;
    return text;
}

/// One list for each property, in the tree's order; what few nodes have is an object by the node's index.
JSONObject nodesOf(const SpaceTree& tree) {
    JSONArray names;
    JSONArray bytes;
    JSONArray files;
    JSONArray firstChildren;
    JSONArray childCounts;
    std::string kinds;
    std::vector<JSONMember> entries;
    std::vector<JSONMember> unmeasured;
    for (std::size_t index = 0; index < tree.nodes.size(); ++index) {
        const SpaceNode& node = tree.nodes[index];
        names.emplace_back(printable(node.name));
        bytes.emplace_back(node.bytes);
        files.emplace_back(node.files);
        firstChildren.emplace_back(node.firstChild);
        childCounts.emplace_back(node.childCount);
        kinds += kindLetter(node);
        if (node.kind == SpaceNode::Kind::aggregate) entries.emplace_back(std::to_string(index), node.entries);
        if (auto why = joined(unmeasuredSentences(node)); !why.empty())
            unmeasured.emplace_back(std::to_string(index), std::move(why));
    }
    return {
        {"names", std::move(names)},
        {"bytes", std::move(bytes)},
        {"files", std::move(files)},
        {"firstChildren", std::move(firstChildren)},
        {"childCounts", std::move(childCounts)},
        {"kinds", std::move(kinds)},
        {"entries", JSONObject(std::move(entries))},
        {"unmeasured", JSONObject(std::move(unmeasured))},
    };
}

JSONObject shapeOf(const SunburstShape& shape) {
    return {
        {"rings", shape.rings},
        {"centreRadius", shape.centreRadius},
        {"minimumSpan", shape.minimumSpan},
        {"markerShare", shape.markerShare},
        {"trunkSpan", shape.trunkSpan},
        {"hues", JSONArray(shape.hues.begin(), shape.hues.end())},
    };
}

JSONArray remarksOn(const SpaceTree& tree, std::span<const std::string> remarks) {
    JSONArray all = {"Scanned on " + localTime(tree.takenAt) + "."};
    for (const std::string& remark : remarks)
        all.emplace_back(printable(remark));
    return all;
}

/// For an element whose content no browser reads as markup: nothing in it may look like its end.
std::string withoutMarkup(std::string_view json) {
    std::string safe;
    safe.reserve(json.size());
    for (const char letter : json) {
        if (letter == '<') {
            safe += "\\u003c";
        } else {
            safe += letter;
        }
    }
    return safe;
}

}  // namespace

std::string spacePage(const SpaceTree& tree, std::span<const std::string> remarks) {
    const JSONValue map = JSONObject{
        {"rootPath", printable(tree.userPath(0).value_or(tree.rootPath))},
        {"dataVolume", SpaceTree::dataVolume},
        {"remarks", remarksOn(tree, remarks)},
        {"shape", shapeOf({})},
        {"nodes", nodesOf(tree)},
    };
    // Every text in it was made printable and no number is a special one, so it can always be written.
    const auto json = JSONCoding::encoder(JSONLayout::compact).encode(map);

    constexpr std::string_view placeholder = "{{map}}";
    const std::size_t place = spacePageTemplate.find(placeholder);
    std::string page(spacePageTemplate.substr(0, place));
    page += withoutMarkup(json.value_or("null"));
    page += spacePageTemplate.substr(place + placeholder.size());
    return page;
}

bool isSpacePage(std::string_view content) {
    constexpr std::string_view mark = "<meta name=\"generator\" content=\"Vostrel space map\">";
    const std::string_view start = spacePageTemplate.substr(0, spacePageTemplate.find(mark) + mark.size());
    return content.starts_with(start);
}

}  // namespace vostrel
