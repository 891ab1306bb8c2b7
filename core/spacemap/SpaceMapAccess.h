#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "access/SnapshotAccess.h"
#include "filesystem/AccessDecision.h"
#include "filesystem/PathForm.h"

namespace vostrel {

/// Which places a map may open: what a snapshot may, and the system's, for a map is to show everything on the disk that
/// may be looked at. A value; any thread.
class SpaceMapAccess {
public:
    enum class Scope : std::uint8_t {
        /// One chosen folder.
        folder,
        wholeDisk,
    };

    /// Of a folder, `base` does not count the mounts that the folder lies on.
    SpaceMapAccess(SnapshotAccess base, Scope scope);

    [[nodiscard]] AccessDecision decision(const std::string& path) const;
    [[nodiscard]] const SnapshotAccess& base() const { return snapshotAccess; }
    [[nodiscard]] Scope scope() const { return mapScope; }

private:
    SnapshotAccess snapshotAccess;
    Scope mapScope;
    /// Of the whole disk: where files only seem to be.
    std::vector<PathForm> leftOutForms;
};

}  // namespace vostrel
