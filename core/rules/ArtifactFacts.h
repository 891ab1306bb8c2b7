#pragma once

#include <bitset>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Glob.h"
#include "rules/ArtifactKind.h"
#include "rules/ArtifactLayout.h"
#include "rules/ArtifactSignature.h"

namespace vostrel {

/// Which of the tables' markers lie in a folder, one bit for each.
using ArtifactMarkers = std::bitset<64>;

/// All that is known of a kind of build folder: what marks its projects, how its content tells that a tool made it,
/// and what in it tells that a person put something there.
///
/// The table, `ArtifactFacts.cpp`, knows each tool's documented layout. Where a tool leaves nothing certain behind, its
/// folders are not recognised: a folder named build, dist or target that a person made stays.
struct ArtifactFacts {
    ArtifactKind kind = ArtifactKind::nodeModules;
    /// Raised when its folders are told in another way, so that rules approved before are asked about again.
    int semanticsRevision = 1;
    /// "Node packages".
    std::string title;
    /// One of them must lie beside the folder.
    std::vector<ArtifactMarker> markers;
    /// One of them must hold.
    std::vector<ToolSignature> signatures;
    /// Patterns of names that no tool leaves in the folder at any depth: a document, sources. With one inside, the
    /// folder is a person's.
    std::vector<std::string> neverHolds;

    // Made from the table.
    ArtifactMarkers markerBits;
    struct Tool {
        ArtifactMarkers markerBits;  ///< of the marker that it wants as well
        ArtifactLayout own;
    };
    /// Beside `signatures`.
    std::vector<Tool> tools;
    Glob::Patterns persons;

    /// The tool that makes the folder, or "a tool".
    [[nodiscard]] std::string toolName() const;
    /// Everything that decides what is recognised, as text: an approval holds it.
    [[nodiscard]] std::string definition() const;
};

[[nodiscard]] const ArtifactFacts& factsOf(ArtifactKind kind);

/// The kind whose folders have that very name.
[[nodiscard]] std::optional<ArtifactKind> kindOfFolder(std::string_view name);

/// The markers of any kind that a file of that name is.
[[nodiscard]] ArtifactMarkers markersOf(std::string_view fileName);

/// The names of files that mark a Python project.
[[nodiscard]] const std::vector<std::string>& pythonProjectFiles();
/// Their markers.
[[nodiscard]] ArtifactMarkers pythonProjectMarkers();

}  // namespace vostrel
