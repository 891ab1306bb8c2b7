#pragma once

#include "rules/NamePatterns.h"

namespace vostrel::artifacts {

// Which names people give: with such a file inside, or where no tool puts one, a build folder is a person's.

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

}  // namespace vostrel::artifacts
