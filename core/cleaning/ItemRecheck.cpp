#include "cleaning/ItemRecheck.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "base/SystemError.h"
#include "cleaning/ItemSelection.h"
#include "cleaning/ItemSentences.h"
#include "filesystem/PathForm.h"
#include "filesystem/ScreenshotName.h"
#include "platform/FileStatus.h"
#include "platform/FolderOpening.h"
#include "platform/OwnedDescriptor.h"
#include "platform/TrashInfo.h"
#include "platform/VolumeFacts.h"
#include "rules/ArtifactFacts.h"
#include "rules/ArtifactRecognition.h"
#include "rules/ProjectScanner.h"

namespace vostrel {

namespace {

constexpr std::chrono::seconds projectTimeLimit{30};

bool contains(const std::filesystem::path& folder, const std::filesystem::path& item) {
    const auto around = PathForm::of(folder);
    const auto inside = PathForm::of(item);
    return around && inside && around->contains(*inside) && !inside->contains(*around);
}

bool overlap(const std::vector<PlanRoot>& roots) {
    for (std::size_t at = 0; at < roots.size(); ++at) {
        for (std::size_t other = 0; other < roots.size(); ++other) {
            const auto here = PathForm::of(roots[at].url);
            const auto there = PathForm::of(roots[other].url);
            if (at != other && (!here || !there || here->contains(*there))) return true;
        }
    }
    return false;
}

class NameSink final : public EntrySink {
public:
    void entry(const FolderEntry& entry) override { names.emplace(entry.name); }
    std::set<std::string> names;
};

/// Nothing of what could not be listed, which then is not what it was before.
std::set<std::string> namesIn(const std::filesystem::path& path) {
    const OwnedDescriptor folder(openFolder(path));
    NameSink sink;
    FolderListing listing(ListingDetail::names);
    while (folder.isOpen()) {
        const auto step = listing.readSome(folder.get(), sink);
        if (!step) return {};
        if (*step == FolderListing::Step::end) break;
    }
    return sink.names;
}

ProjectMeasure measured(const ProjectQuestion& question, const PathGuards& guards, FolderSource& source,
                        const Clock& clock) {
    const ProjectScanner scanner(guards, source, FolderWalk::usualHelpers());
    const WalkBudget budget{clock() + projectTimeLimit, question.isCancelled, clock};
    ProjectMeasure now;
    for (const auto& holder : question.holders)
        now.entries.emplace(holder, namesIn(holder));
    now.newestSource = scanner.newestSource(question.project, question.exception, budget, question.removedFrom);
    return now;
}

int untouchedDaysOf(const RuleTarget& target) {
    const auto* scan = std::get_if<ProjectScanTarget>(&target);
    return scan == nullptr ? 0 : scan->untouchedDays;
}

}  // namespace

ItemRecheck::ItemRecheck(const CleanupExecutor& ofExecutor, const CleanupPlan& ofRun,
                         const CleanupExecutor::Order& told, std::function<bool()> isCancelled)
    : executor(ofExecutor),
      plan(ofRun),
      order(told),
      cancelled(std::move(isCancelled)),
      preset(executor.catalog.presetOf(plan.terms.target)),
      examination(source),
      projects(
          plan, untouchedDaysOf(plan.terms.target),
          executor.measureProject ? executor.measureProject : [this](const ProjectQuestion& question) {
              return vostrel::measured(question, executor.guards, source, executor.clock);
          }) {
    planProblem = checkPlan();
    for (const PlanRoot& root : plan.roots)
        rootProblems.push_back(planProblem ? planProblem : checkRoot(root));
    auto compiled = RuleFilter::CompiledGlobs::compile(order.filter);
    auto excluded = Glob::Patterns::compile(order.filter.excludeGlobs);
    if (!compiled || !excluded) {
        planProblem = ItemVerdict::refused(compiled ? excluded.error() : compiled.error());
        return;
    }
    names = *std::move(compiled);
    exclusions = *std::move(excluded);
    if (preset == nullptr) return;
    auto items = PresetItems::of(*preset, executor.guards.home());
    if (items) {
        presetItems = *std::move(items);
    } else {
        planProblem = ItemVerdict::refused(items.error());
    }
}

std::optional<ItemVerdict> ItemRecheck::checkPlan() const {
    if (overlap(plan.roots)) return ItemVerdict::refused(sentences::item::rootsOverlap);
    return std::nullopt;
}

std::optional<ItemVerdict> ItemRecheck::checkRoot(const PlanRoot& root) const {
    const OwnedDescriptor folder(openFolder(root.url));
    const auto status = folder.isOpen() ? statusOfOpen(folder.get()) : std::unexpected(errno);
    const auto uuid = executor.volumeUUID(root.url);
    const bool isTheSame = status && uuid && RootIdentity{*uuid, status->inode} == root.identity;
    if (!isTheSame) return ItemVerdict::refused(sentences::item::rootReplaced);
    const bool onlyTrashes = root.trashOnly || (preset != nullptr && preset->trashOnly);
    if (order.action == CleanupAction::deletePermanently && onlyTrashes)
        return ItemVerdict::refused(sentences::item::onlyToTrash);
    return std::nullopt;
}

std::optional<ItemVerdict> ItemRecheck::problem(const PlannedItem& item) {
    if (planProblem) return planProblem;
    if (item.rootIndex >= plan.roots.size()) return ItemVerdict::refused(sentences::item::outsideItsFolder);
    if (const auto& ofRoot = rootProblems[item.rootIndex]) return ofRoot;
    for (const Check check :
         {&ItemRecheck::checkGate, &ItemRecheck::checkGuards, &ItemRecheck::checkRule, &ItemRecheck::checkIdentity,
          &ItemRecheck::measure, &ItemRecheck::checkDates, &ItemRecheck::checkContent, &ItemRecheck::checkProject}) {
        if (auto verdict = (this->*check)(item)) return verdict;
    }
    return std::nullopt;
}

std::optional<ItemVerdict> ItemRecheck::checkGate(const PlannedItem& item) {
    if (!order.itemGate) return std::nullopt;
    if (auto sentence = order.itemGate(item)) return ItemVerdict::refused(*sentence);
    return std::nullopt;
}

std::optional<ItemVerdict> ItemRecheck::checkGuards(const PlannedItem& item) {
    const PlanRoot& root = rootOf(item);
    if (auto refusal = executor.guards.refusalForItem(item.url, root.exception)) return ItemVerdict::refused(*refusal);
    if (!contains(root.url, item.url)) return ItemVerdict::refused(sentences::item::outsideItsFolder);
    const auto itsVolume = executor.volumeIdentity(item.url);
    if (itsVolume && itsVolume != executor.volumeIdentity(root.url))
        return ItemVerdict::refused(sentences::item::onAnotherDisk);
    if (presetItems) {
        if (auto refusal = presetItems->refusal(item.url)) return ItemVerdict::refused(*refusal);
    }
    return std::nullopt;
}

/// The rule's names, scope and chosen files again, and the preset's names.
std::optional<ItemVerdict> ItemRecheck::checkRule(const PlannedItem& item) {
    const PlanRoot& root = rootOf(item);
    const std::string name = item.url.filename();
    const EntryType type = item.isDirectory ? EntryType::folder : EntryType::file;
    if (!item.project) {
        const bool isTopLevel = item.url.parent_path() == root.url;
        const bool isInScope = order.filter.scope == RuleScope::allFiles ? !item.isDirectory : isTopLevel;
        if (!names.passes(name)) return ItemVerdict::refused(sentences::item::notOfTheRulesNames);
        if (!isInScope) return ItemVerdict::refused(sentences::item::notWhereTheRuleCleans);
    }
    if (root.screenshotFolder && (item.isDirectory || !isScreenshotName(name)))
        return ItemVerdict::refused(sentences::item::notAScreenshot);
    if (presetItems && (presetItems->keeps(name, type) || !presetItems->recognises(name)))
        return ItemVerdict::refused(sentences::item::notOfThePresetsNames);
    if (!order.filter.pinsAllow(name, item.fileID, root.identity.volumeUUID))
        return ItemVerdict::refused(sentences::item::notAChosenFile);
    return std::nullopt;
}

std::optional<ItemVerdict> ItemRecheck::checkIdentity(const PlannedItem& item) {
    if (executor.guards.isDataless(item.url)) return ItemVerdict::changed(sentences::item::onlyInICloud);
    const auto status = statusOfPath(item.url);
    if (!status) {
        return ItemVerdict::changed(isMissing(status.error()) ? sentences::item::gone : sentences::item::couldNotCheck);
    }
    if (status->type == EntryType::link) return ItemVerdict::changed(sentences::item::becameALink);
    const bool isFolder = status->type == EntryType::folder;
    const bool isTheSame =
        status->device == item.device && status->inode == item.fileID && isFolder == item.isDirectory;
    if (!isTheSame) return ItemVerdict::changed(sentences::item::itemReplaced);
    const OwnedDescriptor around(openFolder(item.url.parent_path()));
    const auto holder = around.isOpen() ? statusOfOpen(around.get()) : std::unexpected(errno);
    if (!holder && !isAnotherPath(holder.error())) return ItemVerdict::changed(sentences::item::couldNotCheck);
    if (!holder || FileIdentity{holder->device, holder->inode} != item.parent)
        return ItemVerdict::refused(sentences::item::folderReplaced);
    return std::nullopt;
}

std::optional<ItemVerdict> ItemRecheck::measure(const PlannedItem& item) {
    const Glob::Patterns& never = item.project ? factsOf(item.project->kind).persons : exclusions;
    auto found = measureItem(item.url, never, executor.guards, budget(), rootOf(item).exception);
    if (!found)
        return ItemVerdict::changed(isMissing(found.error().code) ? sentences::item::gone
                                                                  : sentences::item::couldNotCheck);
    measured = *std::move(found);
    if (measured.identity != FileIdentity{item.device, item.fileID})
        return ItemVerdict::changed(sentences::item::itemReplaced);
    return std::nullopt;
}

/// By the rule's own basis, and by its preset's.
std::optional<ItemVerdict> ItemRecheck::checkDates(const PlannedItem& item) {
    const Date now = executor.clock();
    if (rootOf(item).datedByTrashInfo) {
        const auto thrownAway = deletionDate(item.url);
        if (!thrownAway) return ItemVerdict::changed(sentences::item::changed);
        measured.added = std::max(*thrownAway, measured.added.value_or(measured.facts.newestUse));
    }
    const Date date = ageDateOf(measured, item.url, order.filter.ageBasis);
    if (date > plan.createdAt) return ItemVerdict::changed(sentences::item::changed);
    const bool isOld = isOldEnough(date, order.filter.minAgeDays, now) &&
                       (!presetItems || presetItems->letsGo(measured, item.url, now));
    if (!isOld) return ItemVerdict::changed(sentences::item::notOldEnough(minAgeDays().value_or(0)));
    if (!item.isDirectory && wasJustChanged(measured.facts.newestUse))
        return ItemVerdict::changed(sentences::item::justChanged);
    return std::nullopt;
}

/// Everything in a folder: nothing just changed, all of it could be read, and nothing in it is kept.
std::optional<ItemVerdict> ItemRecheck::checkContent(const PlannedItem& item) {
    const TreeFacts& facts = measured.facts;
    if (item.isDirectory && wasJustChanged(facts.newestUse)) return ItemVerdict::changed(sentences::item::justChanged);
    const bool wasRead = facts.unreadableCount == 0 && measured.trouble != MeasuredItem::Trouble::couldNotRead &&
                         measured.trouble != MeasuredItem::Trouble::notMeasuredInTime;
    if (!wasRead) return ItemVerdict::changed(sentences::item::notReadInTime);
    const bool holdsWhatStays =
        facts.containsExcluded || facts.protectedRefusal || facts.crossesVolume || facts.containsDataless;
    if (holdsWhatStays) return ItemVerdict::changed(sentences::item::holdsWhatStays);
    if (measured.trouble != MeasuredItem::Trouble::none) return ItemVerdict::changed(sentences::item::changed);
    return std::nullopt;
}

std::optional<ItemVerdict> ItemRecheck::checkProject(const PlannedItem& item) {
    if (!item.project) return std::nullopt;
    if (auto verdict = projects.problem(item, budget())) return verdict;
    return checkBuildFolder(item);
}

std::optional<ItemVerdict> ItemRecheck::checkBuildFolder(const PlannedItem& item) {
    const ArtifactKind kind = item.project->kind;
    const int days = untouchedDaysOf(plan.terms.target);
    if (measured.facts.newestUse > executor.clock() - std::chrono::days(days))
        return ItemVerdict::changed(sentences::item::buildFolderInUse(days));
    const auto status = statusOfPath(item.url);
    if (!status) return ItemVerdict::changed(sentences::item::couldNotCheck);
    const WalkVolume volume{status->device, status->mount};
    const WalkBudget limit = budget();
    ArtifactRecognition recognition(source, volume, [&] { return limit.isSpent(); });
    const auto beside = recognition.markersIn(item.url.parent_path());
    if (!beside || (*beside & factsOf(kind).markerBits).none())
        return ItemVerdict::changed(sentences::item::markerGone);
    const auto recognised = recognition.recognise(item.url.native(), kind, *beside);
    if (kindOfFolder(item.url.filename().native()) != kind ||
        (recognised && *recognised != FileIdentity{item.device, item.fileID}))
        return ItemVerdict::changed(sentences::item::notThePlannedBuildFolder);
    const auto state =
        recognised ? examination.examine(item.url.native(), kind, volume, limit) : BuildFolderState::aPersons;
    switch (state) {
        case BuildFolderState::theTools:
            return std::nullopt;
        case BuildFolderState::aPersons:
            return ItemVerdict::changed(sentences::item::notMadeBy(factsOf(kind).toolName()));
        case BuildFolderState::couldNotRead:
        case BuildFolderState::notReadInTime:
            break;
    }
    return ItemVerdict::changed(sentences::item::notReadInTime);
}

std::optional<int> ItemRecheck::minAgeDays() const {
    if (preset == nullptr) return order.filter.minAgeDays;
    return std::max(order.filter.minAgeDays, preset->minAgeDays);
}

bool ItemRecheck::wasJustChanged(Date newest) const {
    return executor.clock() - newest < ItemSelection::recentUse;
}

WalkBudget ItemRecheck::budget() const {
    return {executor.clock() + executor.timeLimit, cancelled, executor.clock};
}

}  // namespace vostrel
