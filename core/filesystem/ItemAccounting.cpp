#include "filesystem/ItemAccounting.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "base/LongList.h"
#include "base/SystemError.h"

namespace vostrel {

namespace {

using Trouble = MeasuredItem::Trouble;

// Why a subfolder is not entered.
constexpr WalkDecision notAnItem{1};
constexpr WalkDecision protectedPlace{2};
constexpr WalkDecision excludedName{3};
constexpr WalkDecision unrecognised{4};

// A folder may hold a million items, each with a name to be compared with many patterns.
constexpr std::size_t entriesBetweenLooks = 256;

bool isLeftOutFor(WalkDecision decision, WalkDecision reason) {
    return decision.leftOutFor == reason.leftOutFor;
}

std::string_view folderOf(std::string_view relativePath) {
    const auto slash = relativePath.rfind('/');
    return slash == std::string_view::npos ? std::string_view{} : relativePath.substr(0, slash);
}

std::string joined(std::string_view folder, std::string_view name) {
    std::string path(folder);
    if (!path.empty()) path += '/';
    return path += name;
}

bool isSameAndUnchanged(const FileStatus& before, const std::expected<FileStatus, int>& now) {
    return now && now->type == before.type && now->device == before.device && now->inode == before.inode &&
           now->mount == before.mount && now->modified == before.modified && now->changed == before.changed;
}

}  // namespace

void ItemNotes::entry(const FolderEntry& entry) {
    if (!holdsItems) return add(entry);
    appendToLongList(entries, KeptEntry{entry, names.size(), entry.name.size()});
    names += entry.name;
}

void ItemNotes::add(const FolderEntry& entry) {
    if (questions.exclusions.matchesAny(entry.name)) {
        sum.containsExcluded = true;
        return;
    }
    if (auto refusal = questions.guards.refusalForWalkedItem(questions.root, folder, entry.name)) {
        if (!sum.protectedRefusal) sum.protectedRefusal = std::move(refusal);
        return;
    }
    if (entry.error != 0) return sum.addUnreadable();
    if (entry.type == EntryType::link) return;  // its making and its going show in its folder's dates
    if (entry.type == EntryType::folder || entry.mountStatus != 0) {
        sum.crossesVolume = true;
        return;
    }
    sum.addDates(entry.modified, entry.changed, entry.added);
    sum.containsDataless = sum.containsDataless || entry.isDataless;
    if (entry.linkCount >= 2) {
        linkedFiles.push_back({entry.fileID, entry.allocated});
    } else {
        sum.addFile(entry.allocated);
    }
}

void ItemNotes::clear() {
    constexpr std::size_t worthKeeping = 1U << 20U;
    if (footprint() > worthKeeping) {
        linkedFiles = {};
        entries = {};
        names = {};
    }
    folder.clear();
    holdsItems = false;
    sum = {};
    linkedFiles.clear();
    entries.clear();
    names.clear();
}

std::size_t ItemNotes::footprint() const {
    return linkedFiles.capacity() * sizeof(LinkedFile) + entries.capacity() * sizeof(KeptEntry) + names.capacity();
}

std::string_view ItemNotes::nameOf(const KeptEntry& kept) const {
    return std::string_view(names).substr(kept.nameStart, kept.nameLength);
}

ItemAccounting::ItemAccounting(const ItemQuestions& forWhat, FolderSource& from, LinkSet& linkSet,
                               std::function<void(MeasuredItem&&)> sink)
    : questions(forWhat), source(from), links(linkSet), found(std::move(sink)) {}

std::unique_ptr<FolderNotes> ItemAccounting::makeNotes() const {
    return std::make_unique<ItemNotes>(questions);
}

void ItemAccounting::prepare(const WalkedFolder& folder, const FolderNotes* parent, FolderNotes& notes) {
    auto& prepared = dynamic_cast<ItemNotes&>(notes);
    prepared.holdsItems = holdsItems(folder.depth);
    if (parent != nullptr) prepared.folder = joined(dynamic_cast<const ItemNotes&>(*parent).folder, folder.name);
}

bool ItemAccounting::holdsItems(std::size_t depth) const {
    if (questions.itemsAre == ItemsAre::filesAtAnyDepth) return true;
    return depth == 0 && questions.itemsAre != ItemsAre::theFolderItself;
}

bool ItemAccounting::isItem(std::size_t depth) const {
    if (questions.itemsAre == ItemsAre::theFolderItself) return depth == 0;
    return questions.itemsAre == ItemsAre::topLevelEntries && depth == 1;
}

WalkDecision ItemAccounting::decisionOn(const WalkedFolder& folder) const {
    if (questions.itemsAre == ItemsAre::topLevelFiles) return notAnItem;
    const std::string relativePath = relativePathOf(folder);
    if (questions.guards.refusalForWalkedItem(questions.root, folderOf(relativePath), folder.name)) {
        return protectedPlace;
    }
    if (isItem(folder.depth)) {
        if (!questions.admits(folder.name, 0, EntryType::folder)) return notAnItem;
        return !questions.recognises || questions.recognises(folder.name) ? WalkDecision{} : unrecognised;
    }
    return questions.exclusions.matchesAny(folder.name) ? excludedName : WalkDecision{};
}

void ItemAccounting::leftOut(const WalkedFolder& folder, WalkDecision decision) {
    if (isLeftOutFor(decision, notAnItem)) return;
    if (isLeftOutFor(decision, excludedName)) return trouble(folder, Trouble::isExcluded);
    if (isLeftOutFor(decision, unrecognised)) return trouble(folder, Trouble::isUnrecognised);
    const std::string relativePath = relativePathOf(folder);
    trouble(folder, Trouble::isProtected,
            questions.guards.refusalForWalkedItem(questions.root, folderOf(relativePath), folder.name));
}

void ItemAccounting::tooDeep(const WalkedFolder& folder) {
    trouble(folder, Trouble::couldNotRead);
}

void ItemAccounting::couldNotOpen(const WalkedFolder& folder, int error) {
    if (folder.depth == 0) {
        failure = error;
    } else {
        trouble(folder, Trouble::couldNotRead);
    }
}

void ItemAccounting::onOtherVolume(const WalkedFolder& folder) {
    if (folder.depth == 0) {
        failure = EXDEV;
    } else {
        trouble(folder, Trouble::onOtherVolume);
    }
}

void ItemAccounting::notReached(const WalkedFolder& folder) {
    if (isCancelled() || !holdsItems(folder.depth - 1)) return;  // the item that it is a part of says so
    const WalkDecision decision = decisionOn(folder);
    if (decision.enters()) {
        trouble(folder, Trouble::notMeasuredInTime);
    } else {
        leftOut(folder, decision);
    }
}

void ItemAccounting::trouble(const WalkedFolder& folder, Trouble trouble, const std::optional<std::string>& refusal) {
    Level& around = levels.back();
    if (holdsItems(folder.depth - 1)) {
        MeasuredItem item;
        item.relativePath = relativePathOf(folder);
        item.trouble = trouble;
        item.type = EntryType::folder;
        item.parent = {around.status.device, around.status.inode};
        item.facts.protectedRefusal = refusal;
        return found(std::move(item));
    }
    TreeFacts& facts = around.facts;
    if (trouble == Trouble::couldNotRead) facts.addUnreadable();
    if (trouble == Trouble::isProtected && !facts.protectedRefusal) facts.protectedRefusal = refusal;
    facts.containsExcluded = facts.containsExcluded || trouble == Trouble::isExcluded;
    facts.crossesVolume = facts.crossesVolume || trouble == Trouble::onOtherVolume;
}

void ItemAccounting::listed(const WalkedFolder& folder, const FileStatus& status, FolderNotes& notes, ListingEnd end,
                            int error) {
    const auto& noted = dynamic_cast<const ItemNotes&>(notes);
    Level level{noted.folder, status, noted.sum, std::nullopt};
    level.facts.addDates(status.modified, status.changed, status.added);
    level.facts.containsDataless = level.facts.containsDataless || status.isDataless;
    if (isItem(folder.depth)) {
        itemLinks = std::make_unique<LinkSet>();
        level.added = status.added;
    } else if (folder.depth > 0) {
        level.added = std::max(status.added, levels.back().added);
    }
    levels.push_back(std::move(level));
    if (folder.depth == 0) root = identityOf(status);
    countLinkedFiles(noted);
    if (noted.holdsItems) reportEntries(noted);
    if (watcher) watcher(folder, levels.back().facts);

    if (end == ListingEnd::failed) {
        if (folder.depth == 0) failure = error;
        levels.back().facts.addUnreadable();
    }
    if (end != ListingEnd::whole && noted.holdsItems && failure == 0) reportRest(folder, end);
}

void ItemAccounting::reportRest(const WalkedFolder& folder, ListingEnd end) {
    MeasuredItem rest;
    rest.relativePath = levels.back().relativePath;
    rest.trouble = end == ListingEnd::failed ? Trouble::couldNotRead : Trouble::notMeasuredInTime;
    rest.type = EntryType::folder;
    if (folder.depth > 0) rest.parent = identityOf(levels[levels.size() - 2].status);
    found(std::move(rest));
}

void ItemAccounting::countLinkedFiles(const ItemNotes& notes) {
    Level& level = levels.back();
    for (const auto& file : notes.linkedFiles) {
        const FileIdentity identity{level.status.device, file.fileID};
        if (itemLinks->insert(identity)) addLinked(level.facts, identity, file.allocated);
    }
}

/// Each item holds the file, but only the first that is measured counts its bytes.
void ItemAccounting::addLinked(TreeFacts& facts, FileIdentity file, std::int64_t allocated) {
    const bool isNew = links.insert(file);
    facts.addFile(isNew ? allocated : 0);
    if (!isNew) facts.addShared(allocated);
}

void ItemAccounting::reportEntries(const ItemNotes& notes) {
    const bool wantsFolders = questions.itemsAre == ItemsAre::topLevelEntries;
    std::size_t count = 0;
    for (const auto& kept : notes.entries) {
        if (isCancelled()) return;
        isLate = isLate || (++count % entriesBetweenLooks == 0 && budget != nullptr && budget->isSpent());
        const std::string_view name = notes.nameOf(kept);
        const EntryType type = kept.entry.type;
        const bool isFolder = type == EntryType::folder;
        const bool isUnknown = kept.entry.error != 0;
        // Sockets, pipes and devices are neither the files nor the folders that a rule is about.
        const bool isCandidate = isUnknown || type == EntryType::file || type == EntryType::link ||
                                 (isFolder && wantsFolders) ||
                                 (isFolder && questions.itemsAre == ItemsAre::filesAtAnyDepth);
        if (isCandidate) reportEntry(notes.folder, name, kept.entry);
    }
}

void ItemAccounting::reportEntry(std::string_view folder, std::string_view name, const FolderEntry& entry) {
    const bool isOfTool = !questions.recognises || entry.type == EntryType::folder || questions.recognises(name);
    if (!isOfTool) return;
    const Level& around = levels.back();
    MeasuredItem item;
    item.type = entry.type;
    item.identity = {around.status.device, entry.fileID};
    item.parent = identityOf(around.status);
    const bool isElsewhere =
        entry.type == EntryType::folder || entry.mountStatus != 0 ||
        (entry.error == 0 && entry.type == EntryType::file && entry.device != around.status.device);
    if (entry.error == 0 && entry.type == EntryType::link) {
        item.trouble = Trouble::isLink;
    } else if (entry.error == 0 && isElsewhere) {
        item.trouble = Trouble::onOtherVolume;
    } else if (auto refusal = questions.guards.refusalForWalkedItem(questions.root, folder, name)) {
        item.trouble = Trouble::isProtected;
        item.facts.protectedRefusal = std::move(refusal);
    } else if (isLate) {
        item.trouble = Trouble::notMeasuredInTime;
    } else if (!questions.admits(name, entry.fileID, entry.type)) {
        return;
    } else if (entry.error != 0) {
        item.trouble = Trouble::couldNotRead;
    } else {
        measure(entry, item);
    }
    item.relativePath = joined(folder, name);
    found(std::move(item));
}

void ItemAccounting::measure(const FolderEntry& entry, MeasuredItem& item) {
    item.facts.addDates(entry.modified, entry.changed, entry.added);
    item.facts.containsDataless = entry.isDataless;
    if (entry.linkCount >= 2) {
        addLinked(item.facts, item.identity, entry.allocated);
    } else {
        item.facts.addFile(entry.allocated);
    }
    levels.back().facts.addFile(item.facts.bytes);
    item.added = std::max(entry.added, levels.back().added);
    item.accessed = entry.accessed;
}

void ItemAccounting::finished(const WalkedFolder& folder, bool stopped) {
    Level level = std::move(levels.back());
    levels.pop_back();
    if (isItem(folder.depth)) {
        reportFolder(std::move(level), folder, stopped);
    } else if (!levels.empty() && !holdsItems(folder.depth - 1)) {
        levels.back().facts.add(level.facts);
    }
}

void ItemAccounting::reportFolder(Level level, const WalkedFolder& folder, bool stopped) {
    MeasuredItem item;
    item.relativePath = std::move(level.relativePath);
    item.type = EntryType::folder;
    item.identity = identityOf(level.status);
    if (!levels.empty()) item.parent = identityOf(levels.back().status);
    item.facts = std::move(level.facts);
    item.added = level.added;
    item.accessed = level.status.accessed;
    if (stopped) {
        item.trouble = Trouble::notMeasuredInTime;
    } else if (const auto now = source.lookUp(std::string(folder.path)); !now && !isMissing(now.error())) {
        item.trouble = Trouble::couldNotRead;
    } else if (!isSameAndUnchanged(level.status, now)) {
        item.trouble = Trouble::changedMeanwhile;
    }
    found(std::move(item));
}

FileIdentity ItemAccounting::identityOf(const FileStatus& status) {
    return {status.device, status.inode};
}

std::string ItemAccounting::relativePathOf(const WalkedFolder& folder) {
    // The folder lies as deep below the walked one as its depth says.
    std::size_t start = folder.path.size();
    for (std::size_t left = folder.depth; left > 0; --left)
        start = folder.path.rfind('/', start - 1);
    return std::string(folder.path.substr(folder.depth == 0 ? start : start + 1));
}

}  // namespace vostrel
