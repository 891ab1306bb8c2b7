#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "rules/ArtifactKind.h"

namespace vostrel {

class PresetCatalog;

/// One folder that the user chose.
struct FolderTarget {
    std::filesystem::path path;
    friend bool operator==(const FolderTarget&, const FolderTarget&) = default;
};

/// The folders of a preset.
struct PresetTarget {
    std::string id;
    friend bool operator==(const PresetTarget&, const PresetTarget&) = default;
};

/// The build folders of those kinds in projects below the roots that nobody has touched for so many days.
struct ProjectScanTarget {
    std::vector<std::filesystem::path> roots;
    std::set<ArtifactKind> kinds;
    int untouchedDays = 0;

    [[nodiscard]] bool hasValidDays() const { return untouchedDays >= 1 && untouchedDays <= 3650; }
    friend bool operator==(const ProjectScanTarget&, const ProjectScanTarget&) = default;
};

/// What a rule cleans, in the user's terms. `TargetResolver` turns it into folders.
using RuleTarget = std::variant<FolderTarget, PresetTarget, ProjectScanTarget>;

/// What the target stands for at present, as text. An approval holds it, so that an approval is withdrawn when a
/// preset or a kind of build folder comes to mean something else.
[[nodiscard]] std::string definition(const RuleTarget& target, const PresetCatalog& catalog);

}  // namespace vostrel
