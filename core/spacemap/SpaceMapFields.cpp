#include "spacemap/SpaceMapFields.h"

#include <utility>
#include <vector>

#include "base/Visit.h"
#include "stores/JSONCoding.h"

namespace vostrel {

JSONValue JSONCoder<SpaceTree::RootProblem>::encode(const SpaceTree::RootProblem& problem) {
    return visit(
        problem, [](const SkippedLink&) -> JSONValue { return "link"; },
        [](const Missing&) -> JSONValue { return "missing"; },
        [](const NotAFolder&) -> JSONValue { return "notAFolder"; },
        [](const Unreadable& unreadable) -> JSONValue {
            return JSONObject{{"unreadable", encodeJSON(unreadable.reason)}};
        });
}

JSONValue JSONCoder<SpaceNode>::encode(const SpaceNode& node) {
    std::vector<JSONMember> fields{
        {"name", encodeJSON(std::filesystem::path(node.name))},
        {"kind", encodeJSON(node.kind)},
        {"bytes", node.bytes},
        {"files", node.files},
        {"entries", node.entries},
        {"parent", node.parent},
        {"firstChild", node.firstChild},
        {"childCount", node.childCount},
        {"unreadableCount", node.unreadableCount},
        {"notMeasuredCount", node.notMeasuredCount},
        {"leftOutLibraries", node.leftOutLibraries},
        {"stopped", node.stopped},
        {"detail", encodeJSON(node.detail)},
    };
    if (node.unreadable) fields.emplace_back("unreadable", encodeJSON(*node.unreadable));
    return JSONObject(std::move(fields));
}

std::expected<void, JSONError> writeDocument(const SpaceTree& tree, const std::optional<HiddenSpace>& hidden,
                                             const std::function<void(std::string_view)>& write) {
    std::vector<JSONMember> fields{
        {"rootPath", encodeJSON(std::filesystem::path(tree.rootPath))},
        {"ending", encodeJSON(tree.ending)},
        {"takenAt", encodeJSON(tree.takenAt)},
        {"duration", tree.duration},
        {"stats", encodeJSON(tree.stats)},
        {"nodes", JSONArray()},
    };
    if (tree.problem) fields.emplace_back("problem", encodeJSON(*tree.problem));
    if (hidden) fields.emplace_back("hidden", encodeJSON(*hidden));
    const auto encoder = JSONCoding::encoder(JSONLayout::pretty);
    const auto around = encoder.encode(JSONValue(JSONObject(std::move(fields))));
    if (!around) return std::unexpected(around.error());
    // Within a string its quotes would be escaped.
    constexpr std::string_view start = "\"nodes\": [";
    const std::size_t place = around->find(start) + start.size();
    write(std::string_view(*around).substr(0, place));
    std::string line;
    for (const SpaceNode& node : tree.nodes) {
        const auto text = encoder.encode(node);
        if (!text) return std::unexpected(text.error());
        line = &node == &tree.nodes.front() ? "\n    " : ",\n    ";
        for (const char letter : *text) {
            line += letter;
            if (letter == '\n') line += "    ";
        }
        write(line);
    }
    write("\n  ");
    write(std::string_view(*around).substr(place));
    return {};
}

}  // namespace vostrel
