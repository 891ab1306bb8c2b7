#include "spacemap/SpaceMapFields.h"

#include <utility>
#include <vector>

#include "base/Visit.h"

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

JSONValue documentOf(const SpaceTree& tree, const std::optional<HiddenSpace>& hidden) {
    std::vector<JSONMember> fields{
        {"rootPath", encodeJSON(std::filesystem::path(tree.rootPath))},
        {"ending", encodeJSON(tree.ending)},
        {"takenAt", encodeJSON(tree.takenAt)},
        {"duration", tree.duration},
        {"stats", encodeJSON(tree.stats)},
        {"nodes", encodeJSON(tree.nodes)},
    };
    if (tree.problem) fields.emplace_back("problem", encodeJSON(*tree.problem));
    if (hidden) fields.emplace_back("hidden", encodeJSON(*hidden));
    return JSONObject(std::move(fields));
}

}  // namespace vostrel
