#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace vostrel::artifacts {

// The data behind the table of build folders: where each tool puts its files, as `ArtifactLayout` reads it, and which
// names people give. Patterns of names throughout.

using Names = std::vector<std::string>;

[[nodiscard]] Names joined(std::initializer_list<Names> lists);
/// Each of the folders with each of the paths below it.
[[nodiscard]] Names below(const Names& folders, const Names& paths);
[[nodiscard]] std::string repeated(std::string_view character, int count);
/// A pattern of so many hexadecimal digits.
[[nodiscard]] std::string digits(int count);

/// What a person makes and no tool of the table leaves anywhere, not even in a package.
extern const Names documents;
/// What packages and examples may bring along, but what compilers and bundlers do not make; documents too.
extern const Names belongings;
/// Packages bring pictures along as well, and bundlers copy them; compilers do neither.
extern const Names pictures;
/// What no package brings along: it would not be published.
extern const Names secrets;
/// What people write, and no tool into a folder of its own; compilers do, in places that they name.
extern const Names writings;
extern const Names sources;
/// What tools and people write alike. "BARE" is any name without an ending.
extern const Names byHand;

/// Not the manager's own list.
[[nodiscard]] Names nodePackages();
[[nodiscard]] Names nextFiles();
[[nodiscard]] Names nuxtFiles();
/// In the folder of a bundle's scripts.
extern const Names hashedBundles;
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
