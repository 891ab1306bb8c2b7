#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "spacemap/SpaceTree.h"

namespace vostrel {

/// What an arc's filling says besides its colour.
enum class SunburstPattern : std::uint8_t {
    solid,
    /// Entries too small for arcs of their own, drawn as one.
    smaller,
    /// Something in it was not measured, and no arc further out shows it.
    partlyMeasured,
    /// A place that was not measured, or several: they have no size, the width says nothing.
    notMeasured,
};

/// One arc. Angles are in turns, 0 to 1, clockwise from the top.
struct SunburstArc {
    /// The node drawn; of several drawn as one the first.
    SpaceTree::Index node = 0;
    /// How many children of the same folder it stands for.
    SpaceTree::Index count = 1;
    /// Of all of them.
    std::int64_t bytes = 0;
    /// 0 is the centre, which the focus fills.
    int ring = 0;
    double start = 0;
    double end = 1;
    /// The branch's, in degrees of the OKLCH colour circle; none for what belongs to no branch.
    std::optional<int> hue;
    /// 0 in the innermost ring, 1 in the outermost: the further out, the fainter.
    double shade = 0;
    SunburstPattern pattern = SunburstPattern::solid;

    [[nodiscard]] double span() const { return end - start; }

    friend bool operator==(const SunburstArc&, const SunburstArc&) = default;
};

/// The measures of a drawing. Its outer radius is 1.
struct SunburstShape {
    int rings = 5;
    double centreRadius = 0.29;
    /// The narrowest arc, in turns.
    double minimumSpan = 0.003;
    /// The most that places without a size may take of their folder's arc.
    double markerShare = 0.125;
    /// Of an arc wider than this the children are branches, each with a hue of its own.
    double trunkSpan = 0.5;
    /// One branch after the other takes the next, so that neighbours differ.
    std::array<int, 9> hues = {255, 50, 150, 340, 95, 205, 295, 20, 125};

    /// Where a ring begins; it ends where the next one begins.
    [[nodiscard]] double innerRadius(int ring) const;
};

/// A folder of a map as rings of arcs: its children around it, theirs around them, as wide as their share of the
/// bytes. Pure geometry; a plain value.
struct Sunburst {
    SunburstShape shape;
    /// The focus first, every arc right before those of its children.
    std::vector<SunburstArc> arcs;

    /// Places without a size come last in their folder, each as narrow as an arc may be, while all of them fit into
    /// their share; else as one arc. The first child narrower than an arc may be, and all that follow it, are one arc
    /// with the folder's aggregate; where even that is too narrow, there is a gap.
    [[nodiscard]] static Sunburst of(const SpaceTree& tree, SpaceTree::Index focus, const SunburstShape& shape = {});

    /// The arc at a point, if one is there: x to the right and y downwards from the centre.
    [[nodiscard]] const SunburstArc* arcAt(double x, double y) const;
};

}  // namespace vostrel
