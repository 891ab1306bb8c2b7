#pragma once

#include <set>
#include <string>
#include <utility>

#include "rules/ArtifactReader.h"

namespace vostrel {

/// A Python environment (`.venv`), told by the lists that its packages' installers keep. It only looks.
class PythonEnvironment {
public:
    PythonEnvironment(ArtifactReader& from, std::string folder) : reader(from), environment(std::move(folder)) {}

    /// The files of the installed packages that are as they were installed, as paths below the environment.
    [[nodiscard]] std::set<std::string> installedFiles();
    /// Whether nobody has changed the scripts that came with it: people put settings and passwords into `bin/activate`,
    /// which is in no package's list.
    [[nodiscard]] bool hasItsOwnScripts();

private:
    void addInstalledFiles(const std::string& packages, const std::string& package, std::set<std::string>& files);

    ArtifactReader& reader;
    std::string environment;
};

}  // namespace vostrel
