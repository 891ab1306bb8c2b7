#include "cli/MapPage.h"

#include <fmt/format.h>

#include <string>
#include <system_error>
#include <vector>

#include "base/SpaceFormat.h"
#include "platform/SystemKind.h"
#include "spacemap/SpacePage.h"
#include "stores/StoredFile.h"

namespace vostrel::cli {

namespace fs = std::filesystem;

namespace {

StoredFile storedAt(const fs::path& file) {
    return {.directory = file.parent_path(), .name = file.filename(), .mode = {}};
}

/// What a page of a whole disk says above the picture, which shows only what was found.
std::vector<std::string> remarksOn(const std::optional<HiddenSpace>& hidden) {
    if (!hidden) return {};
    auto remarks = hidden->sentences(systemKind());
    auto figures = SpaceFormat::bytes(hidden->used) + " are in use on this disk";
    if (!hidden->measuredMayCountSharedSpace)
        figures += ", " + SpaceFormat::bytes(hidden->hidden.value_or(0)) + " of it hidden";
    remarks.insert(remarks.begin(), figures + ".");
    return remarks;
}

}  // namespace

CommandResult mayWritePage(const Session& session, const fs::path& file) {
    std::error_code problem;
    if (!fs::is_directory(file.parent_path(), problem))
        return failed(fmt::format("There is no folder {}.", session.guards.displayPath(file.parent_path())));
    const auto content = storedAt(file).read();
    const bool isFree = content ? isSpacePage(*content) : content.error().code == ENOENT;
    if (isFree) return {};
    return failed(fmt::format("{} is there already and is no page of a map. Name another file.",
                              session.guards.displayPath(file)));
}

CommandResult writePage(Session& session, const SpaceTree& tree, const std::optional<HiddenSpace>& hidden,
                        const fs::path& file) {
    // It is asked again: a scan takes its time.
    if (auto allowed = mayWritePage(session, file); !allowed) return allowed;
    if (const auto written = storedAt(file).replace(spacePage(tree, remarksOn(hidden))); !written)
        return failed("The page was not written: " + written.error().description() + ".");
    session.output.line();
    session.output.line({{fmt::format("The page is in {}.", session.guards.displayPath(file))}});
    return {};
}

}  // namespace vostrel::cli
