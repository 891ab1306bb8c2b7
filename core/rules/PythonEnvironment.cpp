#include "rules/PythonEnvironment.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <sstream>

namespace vostrel {

std::set<std::string> PythonEnvironment::installedFiles() {
    std::set<std::string> found;
    const auto versions = reader.contentOf(environment + "/lib");
    if (!versions) return found;
    for (const std::string& version : versions->folders) {
        const std::string packages = fmt::format("lib/{}/site-packages/", version);
        const auto content = reader.contentOf(fmt::format("{}/{}", environment, packages));
        if (!content) continue;
        for (const std::string& name : content->folders) {
            if (name.ends_with(".dist-info")) addInstalledFiles(packages, name, found);
        }
    }
    return found;
}

/// The list is the last that is written of a package: "package/file.py,sha256=…,12", and of what lies outside of the
/// packages "../../../bin/tool,…". Of some files it gives no length.
void PythonEnvironment::addInstalledFiles(const std::string& packages, const std::string& package,
                                          std::set<std::string>& files) {
    const std::string list = fmt::format("{}/{}{}/RECORD", environment, packages, package);
    const auto written = reader.statusOf(list);
    std::istringstream lines(reader.textOf(list).value_or(""));
    for (std::string line; written && std::getline(lines, line);) {
        const std::string file =
            std::filesystem::path(packages + line.substr(0, line.find(','))).lexically_normal().native();
        const auto status = reader.statusOf(fmt::format("{}/{}", environment, file));
        if (line.ends_with('\r')) line.pop_back();
        const std::string length = line.substr(line.rfind(',') + 1);
        const bool isAsInstalled = status && status->modified <= written->modified &&
                                   (length.empty() || length == std::to_string(status->length));
        if (isAsInstalled) files.insert(file);
    }
}

bool PythonEnvironment::hasItsOwnScripts() {
    constexpr std::chrono::minutes toBeMade{10};  // with a slow download of pip
    const auto made = reader.statusOf(environment + "/pyvenv.cfg");
    const auto scripts = reader.contentOf(environment + "/bin");
    return made && scripts && std::ranges::all_of(scripts->files, [&](const std::string& name) {
               const auto script = reader.statusOf(fmt::format("{}/bin/{}", environment, name));
               const bool isOfEnvironment = name.contains("activate") || name == "pydoc.bat";
               return script && (!isOfEnvironment || script->modified - made->modified <= toBeMade);
           });
}

}  // namespace vostrel
