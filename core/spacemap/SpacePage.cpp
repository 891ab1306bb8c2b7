#include "spacemap/SpacePage.h"

#include <fmt/format.h>

#include <string_view>
#include <utility>
#include <vector>

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

/// As JSON. Every text here was made printable and no number is a special one, so it can always be written.
std::string textOf(const JSONValue& value) {
    return JSONCoding::encoder(JSONLayout::compact).encode(value).value_or("null");
}

/// A list with one element for each node, as JSON. It is text from the start: as values, tens of thousands of nodes
/// would take more memory than the scan that found them.
template <class Element>
std::string listOf(const SpaceTree& tree, Element element) {
    std::string list;
    for (const SpaceNode& node : tree.nodes)
        list += (list.empty() ? '[' : ',') + element(node);
    return list + ']';
}

template <auto SpaceNode::* Field>
std::string numbersOf(const SpaceTree& tree) {
    return listOf(tree, [](const SpaceNode& node) { return std::to_string(node.*Field); });
}

/// One list for each property, in the tree's order; what few nodes have is an object by the node's index.
std::string nodesOf(const SpaceTree& tree) {
    std::string kinds;
    std::vector<JSONMember> entries;
    std::vector<JSONMember> unmeasured;
    for (std::size_t index = 0; index < tree.nodes.size(); ++index) {
        const SpaceNode& node = tree.nodes[index];
        kinds += kindLetter(node);
        if (node.kind == SpaceNode::Kind::aggregate) entries.emplace_back(std::to_string(index), node.entries);
        if (auto why = joined(unmeasuredSentences(node)); !why.empty())
            unmeasured.emplace_back(std::to_string(index), std::move(why));
    }
    const std::pair<std::string_view, std::string> properties[] = {
        {"names", listOf(tree, [](const SpaceNode& node) { return textOf(printable(node.name)); })},
        {"bytes", numbersOf<&SpaceNode::bytes>(tree)},
        {"files", numbersOf<&SpaceNode::files>(tree)},
        {"firstChildren", numbersOf<&SpaceNode::firstChild>(tree)},
        {"childCounts", numbersOf<&SpaceNode::childCount>(tree)},
        {"kinds", textOf(kinds)},
        {"entries", textOf(JSONObject(std::move(entries)))},
        {"unmeasured", textOf(JSONObject(std::move(unmeasured)))},
    };
    std::string nodes;
    for (const auto& [name, values] : properties)
        nodes += fmt::format("{}\"{}\":{}", nodes.empty() ? '{' : ',', name, values);
    return nodes + '}';
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
    const std::string whole = textOf(JSONObject{
        {"rootPath", printable(tree.userPath(0).value_or(tree.rootPath))},
        {"dataVolume", SpaceTree::dataVolume},
        {"remarks", remarksOn(tree, remarks)},
        {"shape", shapeOf({})},
    });

    constexpr std::string_view placeholder = "{{map}}";
    const std::size_t place = spacePageTemplate.find(placeholder);
    std::string page(spacePageTemplate.substr(0, place));
    page += withoutMarkup(R"({"nodes":)" + nodesOf(tree) + ',' + whole.substr(1));
    page += spacePageTemplate.substr(place + placeholder.size());
    return page;
}

bool isSpacePage(std::string_view content) {
    constexpr std::string_view mark = "<meta name=\"generator\" content=\"Vostrel space map\">";
    const std::string_view start = spacePageTemplate.substr(0, spacePageTemplate.find(mark) + mark.size());
    return content.starts_with(start);
}

}  // namespace vostrel
