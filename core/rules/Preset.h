#pragma once

#include <optional>
#include <string>
#include <vector>

#include "filesystem/AgeBasis.h"
#include "rules/CleanupAction.h"
#include "rules/PathSource.h"
#include "rules/Rule.h"
#include "rules/RuleScope.h"
#include "rules/RuleTrigger.h"

namespace vostrel {

/// A ready-made rule for one well-known kind of data. Rules made from it are held to its folders, its names, scope and
/// age, and to the Trash when it only trashes.
struct Preset {
    enum class Group { developer, appCaches, browsers, files };

    std::string id;
    /// Raised when the meaning of the preset changes, so that approvals of the older meaning no longer hold.
    int semanticsRevision = 1;
    Group group = Group::developer;
    /// What the user reads: the title, what the data is, and why removing it is safe.
    std::string name;
    std::string summary;
    std::string reason;
    std::vector<PathSource> sources;
    /// Names of items that the preset cleans (all when there are none) and that it keeps, as `PresetNames` reads them;
    /// unlike a rule's patterns they say nothing of what lies inside an item.
    std::vector<std::string> namePatterns = {};
    std::vector<std::string> excludePatterns = {};
    /// What its names are those of, where no one tool gives them, for people to read: "log files".
    std::string namedLike = {};
    RuleScope scope = RuleScope::topLevelItems;
    /// The tool makes only folders of those names: a file is none of its own.
    bool foldersOnly = false;
    bool trashOnly = false;
    std::optional<int> minAgeDays = {};
    AgeBasis ageBasis = AgeBasis::modified;
    CleanupAction action = CleanupAction::trash;
    /// The data comes back by itself.
    bool regenerable = false;
    /// Bundle identifiers of applications while which the preset's rules wait.
    std::vector<std::string> pauseWhileRunning = {};
    bool largeRedownload = false;
    bool recommended = false;
    std::vector<RuleTrigger> suggestedTriggers = {};
    /// Folders below the home in which the tool writes to an entry of the item's name whenever it is used: what it
    /// wrote last counts for the item's age.
    std::vector<std::string> usedBeside = {};
    /// Names directly inside an item under which the tool keeps earlier versions of the user's own files: an item that
    /// holds one stays.
    std::vector<std::string> historyInside = {};
    /// Names of all that the tool puts directly inside an item (anything, when there are none), as `PresetNames` reads
    /// them: an item that holds something else stays.
    std::vector<std::string> namesInside = {};

    /// Whether it cleans the screenshot folder, where only screenshots go.
    [[nodiscard]] bool cleansScreenshots() const;
    /// Whether rules made from it may not list names to clean: it has patterns of its own, or cleans screenshots.
    [[nodiscard]] bool decidesNames() const;
    /// The rule that it is offered as: its own terms, with the triggers that it suggests.
    [[nodiscard]] Rule draftRule(Date createdAt) const;
    /// Everything that decides what it cleans, as text.
    [[nodiscard]] std::string definition() const;

    friend bool operator==(const Preset&, const Preset&) = default;
};

}  // namespace vostrel
