#pragma once

#include <chrono>
#include <expected>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "cleaning/BatchSlot.h"
#include "cleaning/LiveRules.h"
#include "cleaning/RuleAutomation.h"
#include "cleaning/RuleBatch.h"
#include "cli/AgentLock.h"
#include "cli/Cleaning.h"
#include "cli/FileWatch.h"
#include "cli/Session.h"

namespace vostrel::cli {

/// Runs rules without the user as long as the program lives: by the clock, when space is low, and when applications
/// quit. It tells the user what came of that, and when free space falls below an alert level.
///
/// One thread looks around every few seconds and sleeps in between; a batch has a thread of its own, which sees edits
/// of rules and settings while it works.
class Agent {
public:
    /// The session and the lock outlive the agent.
    Agent(Session& in, const AgentLock& held);
    Agent(const Agent&) = delete;
    Agent& operator=(const Agent&) = delete;
    ~Agent();

    /// Looks around once, and runs what is due to its end. Gives the reports of that.
    [[nodiscard]] std::vector<RunReport> once();
    /// Whether something was complained of.
    [[nodiscard]] bool hadTrouble() const { return isTroubled; }
    /// Until the user stops the program, which stops a batch first and records that; or until the data folder is
    /// another, which fails.
    [[nodiscard]] CommandResult run();

private:
    struct Batch;
    /// A notification on its way to the desktop, which says whether it was shown.
    struct Telling {
        std::string title;
        std::string body;
        std::future<bool> shown;
    };
    using Note = std::function<void(RuleBook&)>;

    /// So long after the look before.
    void look(std::chrono::milliseconds slept);
    void lookAtBatch();
    void lookWell();
    /// Stops what runs, records it and tells of it.
    void end();
    void reloadFiles();
    void updateLive();
    template <class Value>
    [[nodiscard]] std::optional<Value> loaded(std::expected<Value, Failure> value, FileWatch& file);
    [[nodiscard]] std::optional<MonitorReading> read();
    void noticeQuits();
    void decide(const std::optional<MonitorReading>& reading);
    void begin(RuleBatch::Work work, const std::optional<AutomationDecision>& decision,
               const std::optional<ThresholdRequest>& request);
    void beginAfterQuits(const std::vector<std::string>& quitters);
    /// Waits for the end of the batch, records it and tells of it.
    void finishBatch();
    [[nodiscard]] bool change(const Note& note);
    [[nodiscard]] bool saveNotes();
    void hear(std::span<const RunReport> reports);
    void notify(const std::string& title, const std::string& body);
    void tellWhatWasNotShown();
    void complain(const std::string& sentence);
    [[nodiscard]] bool isPaused() const;

    Session& session;
    const AgentLock& lock;
    const Cleaning cleaning;
    FileWatch settingsFile;
    FileWatch rulesFile;
    /// Nothing while they cannot be read: then nothing runs.
    std::optional<SettingsKeeper> settings;
    /// A file that was there once and is gone is not one that never was.
    bool hadSettings = false;
    std::optional<RuleBook> book;
    LiveRules live;
    SpaceMonitor monitor;
    SpaceMonitor::Refresh nextReading = SpaceMonitor::Refresh::whenDue;
    RuleAutomation automation;
    BatchSlot slot;
    std::unique_ptr<Batch> batch;
    std::chrono::milliseconds sinceGoodLook{0};
    /// What the rule book does not hold yet, because it could not be saved.
    std::vector<Note> notes;
    /// The applications that ran at the last look, while a rule waits for one to quit.
    std::optional<std::set<std::string>> applications;
    std::vector<RunReport> heard;
    std::vector<Telling> tellings;
    bool isTroubled = false;
    /// What was complained of at the last look and at this one: the same is not said again.
    std::set<std::string> troublesBefore;
    std::set<std::string> troubles;
};

}  // namespace vostrel::cli
