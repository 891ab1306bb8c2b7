#include "spacemap/Sunburst.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>

namespace vostrel {

namespace {

double ratio(std::int64_t part, std::int64_t whole) {
    return static_cast<double>(part) / static_cast<double>(whole);
}

/// Lays out arc by arc. The page of a map goes the same steps in its script, and a test holds one against the other.
class Layout {
public:
    Layout(const SpaceTree& mapped, Sunburst& drawing) : tree(mapped), shape(drawing.shape), arcs(drawing.arcs) {}

    /// Whether this arc or one further out shows that something was not measured.
    bool add(SunburstArc arc) {
        if (arc.ring > 1) arc.shade = static_cast<double>(arc.ring - 1) / (shape.rings - 1);
        const std::size_t place = arcs.size();
        arcs.push_back(arc);
        if (arc.pattern != SunburstPattern::solid) return arc.pattern == SunburstPattern::notMeasured;
        const bool isShownFurtherOut = arc.ring < shape.rings && addChildren(arc);
        if (tree.at(arc.node).isComplete()) return false;
        if (!isShownFurtherOut) arcs[place].pattern = SunburstPattern::partlyMeasured;
        return true;
    }

private:
    using Nodes = std::span<const SpaceTree::Index>;

    bool addChildren(const SunburstArc& folder) {
        std::vector<SpaceTree::Index> sized;
        std::vector<SpaceTree::Index> markers;
        for (const SpaceTree::Index child : tree.children(folder.node))
            (tree.at(child).isMarker() ? markers : sized).push_back(child);

        const double room = folder.span() * shape.markerShare;
        std::size_t markerArcs = markers.size();
        if (static_cast<double>(markerArcs) * shape.minimumSpan > room) markerArcs = shape.minimumSpan > room ? 0 : 1;
        const double measuredEnd = folder.end - static_cast<double>(markerArcs) * shape.minimumSpan;

        const bool showsInSized = addSized(folder, sized, measuredEnd);
        for (std::size_t at = 0; at < markerArcs; ++at) {
            SunburstArc arc = child(folder, Nodes(markers).subspan(at, markerArcs == 1 ? markers.size() : 1));
            arc.start = measuredEnd + static_cast<double>(at) * shape.minimumSpan;
            arc.end = arc.start + shape.minimumSpan;
            arc.pattern = SunburstPattern::notMeasured;
            add(arc);
        }
        return showsInSized || markerArcs > 0;
    }

    bool addSized(const SunburstArc& folder, Nodes nodes, double end) {
        const std::int64_t whole = tree.at(folder.node).bytes;
        if (whole <= 0) return false;
        const double width = end - folder.start;
        const bool isTrunk = folder.span() > shape.trunkSpan;
        std::int64_t before = 0;
        bool showsUnmeasured = false;
        for (std::size_t at = 0; at < nodes.size(); ++at) {
            const SpaceNode& node = tree.at(nodes[at]);
            const bool isSmall = width * ratio(node.bytes, whole) < shape.minimumSpan;
            const bool isRest = isSmall || node.kind == SpaceNode::Kind::aggregate;
            SunburstArc arc = child(folder, nodes.subspan(at, isRest ? nodes.size() - at : 1));
            arc.start = folder.start + width * ratio(before, whole);
            arc.end = folder.start + width * ratio(before + arc.bytes, whole);
            if (isRest) {
                arc.pattern = SunburstPattern::smaller;
                if (arc.span() >= shape.minimumSpan) add(arc);
                break;
            }
            if (isTrunk) arc.hue = shape.hues.at(branches++ % shape.hues.size());
            showsUnmeasured = add(arc) || showsUnmeasured;
            before += node.bytes;
        }
        return showsUnmeasured;
    }

    /// Without its place; in the branch of its folder, if that is part of one.
    [[nodiscard]] SunburstArc child(const SunburstArc& folder, Nodes nodes) const {
        SunburstArc arc;
        arc.node = nodes.front();
        arc.count = static_cast<SpaceTree::Index>(nodes.size());
        for (const SpaceTree::Index node : nodes)
            arc.bytes += tree.at(node).bytes;
        arc.ring = folder.ring + 1;
        if (folder.span() <= shape.trunkSpan) arc.hue = folder.hue;
        return arc;
    }

    const SpaceTree& tree;
    const SunburstShape& shape;
    std::vector<SunburstArc>& arcs;
    std::size_t branches = 0;
};

}  // namespace

double SunburstShape::innerRadius(int ring) const {
    return ring == 0 ? 0 : centreRadius + (1 - centreRadius) * (ring - 1) / rings;
}

Sunburst Sunburst::of(const SpaceTree& tree, SpaceTree::Index focus, const SunburstShape& shape) {
    Sunburst drawing{shape, {}};
    SunburstArc centre;
    centre.node = focus;
    centre.bytes = tree.at(focus).bytes;
    if (tree.at(focus).isMarker()) centre.pattern = SunburstPattern::notMeasured;
    Layout(tree, drawing).add(centre);
    return drawing;
}

const SunburstArc* Sunburst::arcAt(double x, double y) const {
    const double radius = std::hypot(x, y);
    int ring = 0;
    while (ring <= shape.rings && radius >= shape.innerRadius(ring + 1))
        ++ring;
    double turn = std::atan2(x, -y) / (2 * std::numbers::pi);
    if (turn < 0) turn += 1;
    const auto found = std::ranges::find_if(
        arcs, [&](const SunburstArc& arc) { return arc.ring == ring && turn >= arc.start && turn < arc.end; });
    return found == arcs.end() ? nullptr : &*found;
}

}  // namespace vostrel
