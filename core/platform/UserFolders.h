#pragma once

#include <filesystem>
#include <vector>

#include "platform/ProcessEnvironment.h"

namespace vostrel {

/// A folder that the desktop gives a part to, under a name of the user's own language: "Dokumente" may be the
/// documents folder.
struct UserFolder {
    enum class Part { desktop, documents, music, pictures, templates, publicShare, videos };

    Part part = Part::documents;
    std::filesystem::path folder;

    friend bool operator==(const UserFolder&, const UserFolder&) = default;
};

/// The folders that the desktop's settings in this home name, and those in the settings folder that the environment
/// names; none where the system's own names are fixed.
[[nodiscard]] std::vector<UserFolder> userFolders(const std::filesystem::path& home, const Environment& environment);

}  // namespace vostrel
