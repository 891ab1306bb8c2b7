#pragma once

#include <array>
#include <string_view>

namespace vostrel {

/// The kinds of build folder that development tools leave inside projects and make again when they need them.
enum class ArtifactKind {
    nodeModules,
    nextBuild,
    nuxtBuild,
    turboCache,
    parcelCache,
    dist,
    target,
    swiftBuild,
    pods,
    gradleBuild,
    gradleCache,
    pycache,
    pytestCache,
    venv,
    xcodeDerivedData,
};

/// What is known about a kind: the name under which it is stored, and the name its folders have.
struct ArtifactKindNames {
    ArtifactKind kind;
    std::string_view storedName;
    std::string_view folderName;
};

inline constexpr std::array artifactKinds{
    ArtifactKindNames{ArtifactKind::nodeModules, "nodeModules", "node_modules"},
    ArtifactKindNames{ArtifactKind::nextBuild, "nextBuild", ".next"},
    ArtifactKindNames{ArtifactKind::nuxtBuild, "nuxtBuild", ".nuxt"},
    ArtifactKindNames{ArtifactKind::turboCache, "turboCache", ".turbo"},
    ArtifactKindNames{ArtifactKind::parcelCache, "parcelCache", ".parcel-cache"},
    ArtifactKindNames{ArtifactKind::dist, "dist", "dist"},
    ArtifactKindNames{ArtifactKind::target, "target", "target"},
    ArtifactKindNames{ArtifactKind::swiftBuild, "swiftBuild", ".build"},
    ArtifactKindNames{ArtifactKind::pods, "pods", "Pods"},
    ArtifactKindNames{ArtifactKind::gradleBuild, "gradleBuild", "build"},
    ArtifactKindNames{ArtifactKind::gradleCache, "gradleCache", ".gradle"},
    ArtifactKindNames{ArtifactKind::pycache, "pycache", "__pycache__"},
    ArtifactKindNames{ArtifactKind::pytestCache, "pytestCache", ".pytest_cache"},
    ArtifactKindNames{ArtifactKind::venv, "venv", ".venv"},
    ArtifactKindNames{ArtifactKind::xcodeDerivedData, "xcodeDerivedData", "DerivedData"},
};

[[nodiscard]] constexpr const ArtifactKindNames& namesOf(ArtifactKind kind) {
    return artifactKinds[static_cast<std::size_t>(kind)];
}

}  // namespace vostrel
