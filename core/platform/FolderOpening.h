#pragma once

#include <filesystem>

namespace vostrel {

/// Opens a folder for listing by its absolute path, following no link in any component, and leaves its access date
/// as it is where the system lets us. Returns a descriptor that the caller closes, or -1 with `errno` set.
///
/// The path may be longer than the system's limit for one call.
[[nodiscard]] int openFolder(const char* path);
[[nodiscard]] inline int openFolder(const std::filesystem::path& path) {
    return openFolder(path.c_str());
}

/// Opens the entry `name` of an open folder, itself a folder and no link, the same way. -1 with `errno` set, on Linux
/// `EXDEV` where something is mounted on it.
[[nodiscard]] int openSubfolder(int openFolder, const char* name);

/// Opens the folder that holds an open one, wherever that lies now. -1 with `errno` set.
[[nodiscard]] int openParentFolder(int openFolder);

/// Finds what lies at a path below an open folder, going through no link and no other mount: a descriptor that serves
/// for looking at it only. -1 with `errno` set, `ENAMETOOLONG` where the path is longer than one call takes.
[[nodiscard]] int locateBelow(int openFolder, const char* path);

}  // namespace vostrel
