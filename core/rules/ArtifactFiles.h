#pragma once

#include "rules/NamePatterns.h"

namespace vostrel::artifacts {

// The data behind the table of build folders: where each tool puts its files, as `ArtifactLayout` reads it.

/// Not the manager's own list.
[[nodiscard]] Names nodePackages();
[[nodiscard]] Names nextFiles();
[[nodiscard]] Names nuxtFiles();
/// In the folder of a bundle's scripts. All of them must be named by its pages, and copies of the project's public
/// files may lie beside.
[[nodiscard]] Names hashedBundles();
[[nodiscard]] Names cargoFiles();
/// Copies of the project's resources may lie in the classes' folders as well.
extern const Names mavenFiles;
/// Copies of the project's resources may lie in "resources" as well.
[[nodiscard]] Names gradleFiles();
extern const Names gradleCacheFiles;
/// The files of the checkouts stand in Git's own list.
[[nodiscard]] Names swiftFiles();
/// Every folder but the manager's own must be a pod that stands in the manifest.
[[nodiscard]] Names podsFiles();
/// What stands in no package's own list.
[[nodiscard]] Names environmentFiles();
[[nodiscard]] Names derivedDataFiles();

}  // namespace vostrel::artifacts
