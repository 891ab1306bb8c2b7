#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "base/Glob.h"
#include "base/UnicodeText.h"
#include "base/Visit.h"
#include "filesystem/PathGuards.h"
#include "rules/FullPath.h"
#include "rules/PresetCatalog.h"
#include "rules/PresetLimits.h"
#include "rules/Rule.h"
#include "rules/RuleFields.h"
#include "rules/RuleSentences.h"
#include "rules/TargetResolver.h"
#include "stores/JSONCoding.h"

namespace vostrel {

namespace {

using Strings = std::vector<std::string>;

/// The sentences found so far, each once.
class Problems {
public:
    void add(std::string sentence) {
        if (std::ranges::find(sentences, sentence) == sentences.end()) sentences.push_back(std::move(sentence));
    }
    void addIf(bool isProblem, std::string sentence) {
        if (isProblem) add(std::move(sentence));
    }

    Strings sentences;
};

bool listsAFolderTwice(const std::vector<std::filesystem::path>& folders) {
    std::set<std::string> known;
    return !std::ranges::all_of(folders, [&](const std::filesystem::path& folder) {
        const auto form = PathForm::of(folder);
        return known.insert(form ? form->key() : folder.native()).second;
    });
}

void checkFolder(const FolderTarget& folder, Problems& problems) {
    problems.addIf(!isFullPath(folder.path), "Choose a folder.");
}

void checkPreset(const PresetTarget& target, const Rule& rule, const PresetCatalog& catalog, Problems& problems) {
    const Preset* preset = catalog.preset(target.id);
    if (!preset) return problems.add(sentences::presetNotAvailable);
    if (auto problem = presetActionProblem(rule.action, *preset)) problems.add(std::move(*problem));
}

void checkProjectScan(const ProjectScanTarget& scan, const Rule& rule, const TargetResolver& resolver,
                      Problems& problems) {
    problems.addIf(rule.filter.picksByAgeSizeOrName(), sentences::projectScanHasNoFilters);
    problems.addIf(scan.roots.empty(), "Choose at least one code folder.");
    problems.addIf(listsAFolderTwice(scan.roots), "A code folder is listed twice.");
    problems.addIf(scan.kinds.empty(), sentences::noKindOfBuildFolder);
    problems.addIf(!scan.hasValidDays(), sentences::untouchedDaysOutOfRange);
    problems.addIf(!std::ranges::all_of(scan.roots, isFullPath), "Choose each code folder by its full path.");
    problems.addIf(std::ranges::any_of(scan.roots, [&](const auto& root) { return resolver.isInLibrary(root); }),
                   sentences::noProjectsInLibrary);
}

void checkLimits(const RuleFilter& filter, Problems& problems) {
    problems.addIf(filter.minAgeDays.value_or(0) < 0, sentences::negativeAge);
    problems.addIf(filter.minSizeBytes.value_or(0) < 0, sentences::negativeSize);
}

/// A pattern with a "/" is reported once, with the others that have one, not by its syntax as well.
void checkPatterns(const RuleFilter& filter, Problems& problems) {
    Strings names;
    Strings paths;
    for (const auto* patterns : {&filter.includeGlobs, &filter.excludeGlobs}) {
        for (const std::string& pattern : *patterns)
            (pattern.contains('/') ? paths : names).push_back(pattern);
    }
    problems.addIf(!paths.empty(), fmt::format("Name patterns match file names only, so they cannot contain \"/\": {}",
                                               fmt::join(paths, ", ")));
    for (const std::string& name : names) {
        if (auto problem = Glob::validate(name)) problems.add(std::move(*problem));
    }
}

template <class Trigger, class Fails>
bool anyTrigger(const std::vector<RuleTrigger>& triggers, Fails fails) {
    return std::ranges::any_of(triggers, [&](const RuleTrigger& trigger) {
        const auto* ofThatKind = std::get_if<Trigger>(&trigger);
        return ofThatKind && fails(*ofThatKind);
    });
}

void checkTriggers(const std::vector<RuleTrigger>& triggers, Problems& problems) {
    const auto isNoTimeOfDay = [](const auto& at) {
        return at.hour < 0 || at.hour > 23 || at.minute < 0 || at.minute > 59;
    };
    problems.addIf(
        anyTrigger<DailyTrigger>(triggers, isNoTimeOfDay) || anyTrigger<WeeklyTrigger>(triggers, isNoTimeOfDay),
        sentences::noTimeOfDay);
    problems.addIf(anyTrigger<WeeklyTrigger>(triggers, [](const auto& at) { return at.weekday < 1 || at.weekday > 7; }),
                   sentences::noDayOfTheWeek);
    problems.addIf(
        anyTrigger<WhenAppQuitsTrigger>(triggers, [](const auto& quit) { return trimmed(quit.bundleID).empty(); }),
        "A run when an app quits needs the app's bundle id.");
}

void checkPauseList(const Strings& list, Problems& problems) {
    for (const std::string& entry : list)
        problems.addIf(trimmed(entry) != entry, sentences::spacesAroundPauseEntry(entry));
    problems.addIf(std::ranges::any_of(list, [](const std::string& entry) { return trimmed(entry).empty(); }),
                   "An app to pause for is blank.");
}

/// A setting that cannot be read now is no fault of the rule; what the guards refuse will be refused every time.
void checkRoots(const Rule& rule, const PathGuards& guards, const TargetResolver& resolver,
                const PresetCatalog& catalog, Problems& problems) {
    const auto roots = resolver.resolve(rule.target, catalog);
    if (!roots) {
        problems.addIf(roots.error().kind == ResolveError::Kind::protectedRoot, roots.error().sentence);
        return;
    }
    for (const ResolvedRoot& root : *roots) {
        if (auto refusal = guards.refusalForRoot(root.url, root.exception)) problems.add(std::move(*refusal));
        auto problem = rootActionProblem(rule.action, root, guards.displayPath(root.url));
        if (problem) problems.add(std::move(*problem));
    }
}

bool survivesStoring(const Rule& rule) {
    const auto text = JSONCoding::encoder(JSONLayout::pretty).encode(rule);
    if (!text) return false;
    const auto read = JSONCoding::decoder().decode<Rule>(*text);
    return read && *read == rule;
}

}  // namespace

Strings Rule::validationProblems(const PathGuards& guards, const TargetResolver& resolver,
                                 const PresetCatalog& catalog) const {
    Problems problems;
    problems.addIf(trimmed(name).empty(), "Give the rule a name.");
    visit(
        target, [&](const FolderTarget& folder) { checkFolder(folder, problems); },
        [&](const PresetTarget& preset) { checkPreset(preset, *this, catalog, problems); },
        [&](const ProjectScanTarget& scan) { checkProjectScan(scan, *this, resolver, problems); });
    checkLimits(filter, problems);
    checkPatterns(filter, problems);
    checkTriggers(triggers, problems);
    checkPauseList(pauseWhileRunning, problems);
    for (const std::string& problem : filter.chosenFilesProblems())
        problems.add(problem);
    if (const Preset* preset = catalog.presetOf(target)) {
        for (std::string& problem : presetFilterProblems(filter, *preset))
            problems.add(std::move(problem));
    }
    checkRoots(*this, guards, resolver, catalog, problems);
    problems.addIf(!survivesStoring(*this), "This rule could not be saved in a form Vostrel can read back.");
    return std::move(problems.sentences);
}

}  // namespace vostrel
