#include "rules/RuleFilter.h"

#include <algorithm>
#include <set>

#include "base/UnicodeText.h"

namespace vostrel {

namespace {

bool namesAFileTwice(const std::vector<PinnedFile>& pins) {
    std::set<std::string_view> names;
    return !std::ranges::all_of(pins, [&](const PinnedFile& pin) { return names.insert(pin.name).second; });
}

}  // namespace

bool PinnedFile::isName(const std::string& name) {
    return !name.empty() && name != "." && name != ".." && !name.contains('/') && precomposed(name) == name;
}

bool RuleFilter::pinsAllow(std::string_view name, std::uint64_t inode, std::string_view volumeUUID) const {
    if (pinnedFiles.empty()) return true;
    return std::ranges::any_of(pinnedFiles, [&](const PinnedFile& pin) {
        return pin.inode == inode && pin.volumeUUID == volumeUUID && pin.name == precomposed(name);
    });
}

bool RuleFilter::picksByAgeSizeOrName() const {
    return minAgeDays || minSizeBytes || !includeGlobs.empty() || !excludeGlobs.empty() || !pinnedFiles.empty();
}

std::vector<std::string> RuleFilter::chosenFilesProblems() const {
    const bool onlyTopLevelFiles = scope == RuleScope::topLevelFiles;
    std::vector<std::string> problems;
    if (!pinnedFiles.empty() && !onlyTopLevelFiles)
        problems.emplace_back("A rule for chosen files cleans only those files, directly inside its folder.");
    if (!pinnedFiles.empty() && !(includeGlobs.empty() && excludeGlobs.empty()))
        problems.emplace_back("A rule for chosen files cannot also have name patterns.");
    if (namesAFileTwice(pinnedFiles)) problems.emplace_back("A rule for chosen files names each file once.");
    if (pinnedFiles.empty() && onlyTopLevelFiles)
        problems.emplace_back("A rule for chosen files needs the files it was made for.");
    return problems;
}

std::expected<RuleFilter::CompiledGlobs, std::string> RuleFilter::CompiledGlobs::compile(const RuleFilter& filter) {
    auto include = Glob::Patterns::compile(filter.includeGlobs);
    if (!include) return std::unexpected(include.error());
    auto exclude = Glob::Patterns::compile(filter.excludeGlobs);
    if (!exclude) return std::unexpected(exclude.error());
    CompiledGlobs globs;
    globs.include = std::move(*include);
    globs.exclude = std::move(*exclude);
    return globs;
}

}  // namespace vostrel
