#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Glob.h"
#include "filesystem/FolderSource.h"
#include "filesystem/LinkSet.h"
#include "filesystem/MeasuredItem.h"
#include "filesystem/PathGuards.h"
#include "filesystem/WalkAccounting.h"
#include "filesystem/WalkBudget.h"

namespace vostrel {

/// What counts as one item of a walked folder.
enum class ItemsAre { theFolderItself, topLevelEntries, topLevelFiles, filesAtAnyDepth };

/// What a walk for items goes by. Everything referred to outlives the walk; the functions are called on several
/// threads.
struct ItemQuestions {
    ItemsAre itemsAre = ItemsAre::theFolderItself;
    const PathGuards& guards;
    const PathGuards::WalkRoot& root;
    /// Names that are never taken, nor a folder that holds them.
    const Glob::Patterns& exclusions;
    /// Whether the name of an item is one that is looked for; what it does not admit is no item at all.
    std::function<bool(std::string_view name, std::uint64_t fileID, EntryType type)> admits;
    /// Whether a tool gives such names to what it makes; empty when every name will do. A folder of another name is
    /// left out with a word, of a file or link there is nothing to say.
    std::function<bool(std::string_view name)> recognises = {};
};

/// What one folder's listing leaves for its items: entries one by one where they are items, else their sum.
class ItemNotes final : public FolderNotes {
public:
    struct LinkedFile {
        std::uint64_t fileID = 0;
        std::int64_t allocated = 0;
    };
    struct KeptEntry {
        FolderEntry entry;  // its name lies in `names`
        std::size_t nameStart = 0;
        std::size_t nameLength = 0;
    };

    explicit ItemNotes(const ItemQuestions& forWhat) : questions(forWhat) {}

    void entry(const FolderEntry& entry) override;
    void clear() override;
    [[nodiscard]] std::size_t footprint() const override;
    [[nodiscard]] std::string_view nameOf(const KeptEntry& kept) const;

    /// The folder, relative to the one that is walked.
    std::string folder;
    /// Its entries are items, not parts of one.
    bool holdsItems = false;
    TreeFacts sum;
    std::vector<LinkedFile> linkedFiles;
    std::vector<KeptEntry> entries;

private:
    void add(const FolderEntry& entry);

    const ItemQuestions& questions;
    std::string names;
};

/// Finds the items of a folder and measures each.
class ItemAccounting final : public WalkAccounting {
public:
    /// `found` gets every item, troubled ones included, in the walk's order.
    ItemAccounting(const ItemQuestions& questions, FolderSource& source, LinkSet& links,
                   std::function<void(MeasuredItem&&)> found);

    /// Has `seen` called with each folder that was listed and the sum of the files directly in it.
    void watch(std::function<void(const WalkedFolder&, const TreeFacts&)> seen) { watcher = std::move(seen); }

    /// A folder may hold a million items: once the walk is cancelled the rest of them are dropped unreported, and after
    /// the deadline they are named as not measured in time. The budget outlives the walk.
    void keepTo(const WalkBudget& limit) { budget = &limit; }

    [[nodiscard]] std::unique_ptr<FolderNotes> makeNotes() const override;
    void prepare(const WalkedFolder& folder, const FolderNotes* parent, FolderNotes& notes) override;
    WalkDecision decide(const WalkedFolder& folder, const FolderNotes& /*around*/) override {
        return decisionOn(folder);
    }
    void leftOut(const WalkedFolder& folder, WalkDecision decision) override;
    void tooDeep(const WalkedFolder& folder) override;
    void couldNotOpen(const WalkedFolder& folder, int error) override;
    void onOtherVolume(const WalkedFolder& folder) override;
    void listed(const WalkedFolder& folder, const FileStatus& status, FolderNotes& notes, ListingEnd end,
                int error) override;
    void notReached(const WalkedFolder& folder) override;
    void finished(const WalkedFolder& folder, bool stopped) override;

    /// The error that kept the walked folder itself from being opened or listed; 0 when there was none.
    [[nodiscard]] int rootError() const { return failure; }
    /// The walked folder itself, as it was opened.
    [[nodiscard]] FileIdentity rootIdentity() const { return root; }

private:
    struct Level {
        std::string relativePath;
        FileStatus status;
        TreeFacts facts;
        /// The newest arrival among this folder and those around it, the walked folder aside.
        std::optional<Date> added;
    };

    [[nodiscard]] WalkDecision decisionOn(const WalkedFolder& folder) const;
    [[nodiscard]] bool isCancelled() const { return budget != nullptr && budget->isCancelled && budget->isCancelled(); }
    [[nodiscard]] bool holdsItems(std::size_t depth) const;
    [[nodiscard]] bool isItem(std::size_t depth) const;
    [[nodiscard]] static std::string relativePathOf(const WalkedFolder& folder);
    void trouble(const WalkedFolder& folder, MeasuredItem::Trouble trouble,
                 const std::optional<std::string>& refusal = {});
    void reportEntries(const ItemNotes& notes);
    void reportEntry(std::string_view folder, std::string_view name, const FolderEntry& entry);
    void measure(const FolderEntry& entry, MeasuredItem& item);
    void countLinkedFiles(const ItemNotes& notes);
    void addLinked(TreeFacts& facts, FileIdentity file, std::int64_t allocated);
    /// What a listing that ended early did not come to.
    void reportRest(const WalkedFolder& folder, ListingEnd end);
    void reportFolder(Level level, const WalkedFolder& folder, bool stopped);
    [[nodiscard]] static FileIdentity identityOf(const FileStatus& status);

    const ItemQuestions& questions;
    FolderSource& source;
    LinkSet& links;
    std::function<void(MeasuredItem&&)> found;
    std::function<void(const WalkedFolder&, const TreeFacts&)> watcher;
    const WalkBudget* budget = nullptr;
    bool isLate = false;
    FileIdentity root;
    std::vector<Level> levels;
    /// The hard-linked files of the folder item that is being measured.
    std::unique_ptr<LinkSet> itemLinks = std::make_unique<LinkSet>();
    int failure = 0;
};

}  // namespace vostrel
