#include "cli/Agent.h"

#include <fmt/format.h>
#include <poll.h>

#include <algorithm>
#include <future>
#include <iterator>
#include <map>
#include <tuple>
#include <utility>
#include <variant>

#include "base/LocalTime.h"
#include "cli/Interrupt.h"
#include "cli/RunDisplay.h"
#include "monitor/SpaceSentences.h"
#include "platform/Notification.h"

namespace vostrel::cli {

namespace {

using namespace std::chrono_literals;

// Free space, the clock and the applications are looked at so often.
constexpr std::chrono::milliseconds betweenGoodLooks = 15s;
// While a batch runs, the files and whether it has ended.
constexpr std::chrono::milliseconds duringBatch = 500ms;

bool waitsForQuits(const Rule& rule) {
    return rule.enabled && std::ranges::any_of(rule.triggers, [](const RuleTrigger& trigger) {
               return std::holds_alternative<WhenAppQuitsTrigger>(trigger);
           });
}

/// Until the time has passed or the program is to stop.
void sleep(std::chrono::milliseconds time) {
    pollfd interrupt{.fd = Interrupt::descriptor(), .events = POLLIN, .revents = 0};
    std::ignore = ::poll(&interrupt, 1, static_cast<int>(time.count()));
}

/// For the schedule, which wants no items.
RuleBatch::Result withoutLists(RuleBatch::Result result) {
    for (RunReport& report : result.reports)
        report = report.countsOnly();
    if (!result.session) return result;
    for (RunReport& report : result.session->reports)
        report = report.countsOnly();
    return result;
}

}  // namespace

/// A batch with its own view of the home, as it is when the batch begins: an agent lives longer than folders and disks
/// stay where they are.
struct Agent::Batch {
    Batch(const Session& around, const LiveRules& live, RuleBatch::Work wanted)
        : session(around.output, around.clock, around.places),
          cleaning(session),
          rules{.runner = cleaning.runner,
                .live = live,
                .log = session.log,
                .session = {.runner = cleaning.runner,
                            .reader = session.capacityReader,
                            .volume = session.places.home,
                            .isOnMeasuredVolume = sharesSpaceWith(session.places.home)}},
          work(std::move(wanted)) {}

    [[nodiscard]] bool hasEnded() const { return result.wait_for(0s) == std::future_status::ready; }

    Session session;
    Cleaning cleaning;
    RuleBatch rules;
    RuleBatch::Work work;
    std::optional<AutomationDecision> decision;
    std::optional<ThresholdRequest> request;
    /// Waits for the batch when it is destroyed.
    std::future<RuleBatch::Result> result;
};

Agent::Agent(Session& in, const AgentLock& held)
    : session(in),
      lock(held),
      cleaning(in),
      settingsFile(in.places.data / "settings.json"),
      rulesFile(in.places.data / "rules.json"),
      monitor(in.monitor({})) {}

Agent::~Agent() {
    slot.stopAll();
}

std::vector<RunReport> Agent::once() {
    look(betweenGoodLooks);
    while (batch && !Interrupt::requested()) {
        sleep(duringBatch);
        lookAtBatch();
    }
    end();
    return std::move(heard);
}

CommandResult Agent::run() {
    std::chrono::milliseconds pause = betweenGoodLooks;
    while (!Interrupt::requested() && lock.isInPlace()) {
        heard.clear();
        look(pause);
        std::ignore = session.output.finish();
        pause = batch ? duringBatch : betweenGoodLooks;
        sleep(pause);
    }
    end();
    if (lock.isInPlace()) return {};
    return failed(session.places.data.native() + " was moved or replaced. Start the agent again.");
}

void Agent::end() {
    slot.stopAll();
    if (batch) finishBatch();
    for (const Telling& telling : tellings)
        telling.shown.wait();
    tellWhatWasNotShown();
    std::ignore = session.output.finish();
}

void Agent::lookAtBatch() {
    reloadFiles();
    slot.pauseChanged(isPaused());
    if (batch && batch->hasEnded()) finishBatch();
}

void Agent::look(std::chrono::milliseconds slept) {
    lookAtBatch();
    tellWhatWasNotShown();
    sinceGoodLook += slept;
    if (sinceGoodLook < betweenGoodLooks) return;
    sinceGoodLook = 0ms;
    lookWell();
}

void Agent::lookWell() {
    troublesBefore = std::exchange(troubles, {});
    const auto reading = read();
    if (!book) return;
    noticeQuits();
    if (!batch && saveNotes()) decide(reading);
}

void Agent::reloadFiles() {
    const bool haveSettingsChanged = settingsFile.hasChanged();
    const bool haveRulesChanged = rulesFile.hasChanged();
    // While a batch runs nobody else's lock is waited for: a pause must be heard.
    if (haveSettingsChanged) {
        settings = batch ? session.settings.asItIs() : loaded(session.settings.load(), settingsFile);
        const bool areThere = settingsFile.isThere();
        if (hadSettings && !areThere) {
            complain("The settings are gone. Nothing runs by itself until they are back or the agent starts anew.");
            settings.reset();
        }
        hadSettings = hadSettings || areThere;
        if (settings) monitor.update(settings->settings());
    }
    if (haveRulesChanged) book = batch ? session.rules.asItIs() : loaded(session.rules.load(), rulesFile);
    if (haveSettingsChanged || haveRulesChanged) updateLive();
}

void Agent::updateLive() {
    std::map<Uuid, Rule> rules;
    for (const Rule& rule : book.value_or(RuleBook()).rules)
        rules.emplace(rule.id, rule);
    live.update(std::move(rules), isPaused());
}

/// What a file holds; nothing when it cannot be read, which is tried again at the next look.
template <class Value>
std::optional<Value> Agent::loaded(std::expected<Value, Failure> value, FileWatch& file) {
    if (value) return *std::move(value);
    complain(value.error().sentences.front());
    file.forget();
    return std::nullopt;
}

std::optional<MonitorReading> Agent::read() {
    const auto reading = monitor.tick(session.clock(), std::exchange(nextReading, SpaceMonitor::Refresh::whenDue));
    if (!reading) {
        complain(reading.error().sentence(session.places.home));
        return std::nullopt;
    }
    for (const SpaceLine& level : reading->crossedAlertLevels)
        notify("Free space is low", SpaceSentences::alert(level, reading->capacity));
    return *reading;
}

void Agent::noticeQuits() {
    if (std::ranges::none_of(book->rules, waitsForQuits)) {
        applications.reset();
        return;
    }
    auto running = cleaning.runner.runningApps.runningIdentifiers();
    // What cannot be told now is told at a later look, against what ran before.
    if (!running) return;
    const auto before = std::exchange(applications, std::move(running));
    std::vector<std::string> quitters;
    if (before) std::ranges::set_difference(*before, *applications, std::back_inserter(quitters));
    for (const std::string& application : quitters)
        slot.appQuitWhileRunning(application);
    if (!batch && !cleaning.runner.lock.isHeld()) beginAfterQuits(slot.end());
}

void Agent::decide(const std::optional<MonitorReading>& reading) {
    const RuleAutomation::Situation situation{
        .settings = settings ? settings->forAutomation() : std::nullopt, .reading = reading, .now = session.clock()};
    RuleAutomation next = automation;
    RuleBook decided = *book;
    AutomationDecision decision = next.decide(situation, cleaning.runner, decided);
    if (decided.schedule != book->schedule) {
        // What is used up is saved before anything begins, in the book as it is now.
        const bool isSaved = change([&](RuleBook& newest) {
            next = automation;
            decision = next.decide(situation, cleaning.runner, newest);
        });
        if (!isSaved) return;
    }
    automation = std::move(next);
    for (const RunReport& skipped : decision.skips) {
        if (!session.log.append(skipped)) complain("The log could not be written.");
    }
    hear(decision.skips);

    RuleBatch::Unattended work;
    for (const auto& dispatch : decision.scheduled)
        work.scheduled.push_back(dispatch.rule);
    if (decision.startThreshold && reading) {
        work.session = ThresholdRequest::upToTheLine(reading->capacity.displayedFree(), reading->lineBytes);
        work.rules = book->rules;
    }
    if (work.scheduled.empty() && !work.session) return;
    const auto request = work.session;
    begin(std::move(work), decision, request);
}

/// The rules of applications that quit, also while another clean ran.
void Agent::beginAfterQuits(const std::vector<std::string>& quitters) {
    RuleBatch::AppQuit work;
    for (const std::string& application : quitters) {
        for (Rule& rule : rulesForAppQuit(application, book->rules)) {
            const bool isNew = std::ranges::find(work.rules, rule.id, &Rule::id) == work.rules.end();
            if (isNew) work.rules.push_back(std::move(rule));
        }
    }
    if (!work.rules.empty()) begin(std::move(work), std::nullopt, std::nullopt);
}

void Agent::begin(RuleBatch::Work work, const std::optional<AutomationDecision>& decision,
                  const std::optional<ThresholdRequest>& request) {
    reloadFiles();
    if (!book) return;
    std::set<Uuid> all;
    for (const Rule& rule : book->rules)
        all.insert(rule.id);
    const auto control =
        slot.begin(std::move(all), BatchSlot::Start::unattended, session.clock(), &Interrupt::requested);
    if (!control) return;
    batch = std::make_unique<Batch>(session, live, std::move(work));
    batch->decision = decision;
    batch->request = request;
    batch->result =
        std::async(std::launch::async, [control, at = batch.get()] { return at->rules.run(at->work, *control); });
}

void Agent::finishBatch() {
    const RuleBatch::Result result = batch->result.get();
    const auto ended = std::exchange(batch, nullptr);
    // What was read meanwhile is read properly now.
    settingsFile.forget();
    rulesFile.forget();
    notes.emplace_back([brief = withoutLists(result), decision = ended->decision, request = ended->request,
                        now = session.clock()](RuleBook& newest) {
        if (decision) {
            RuleAutomation::finish(*decision, brief, request, now, newest);
        } else {
            RuleAutomation::recordRuns(brief.reports, newest);
        }
    });
    for (const std::string& application : slot.end())
        slot.appQuitWhileRunning(application);
    std::ignore = saveNotes();
    hear(result.allReports());
    if (const auto finish = RuleBatch::finishUnattended(result, ended->request); finish.summary)
        notify(finish.summary->title, finish.summary->body);
    nextReading = SpaceMonitor::Refresh::forced;
}

/// Whether the rule book holds everything that is to be noted in it.
bool Agent::saveNotes() {
    if (notes.empty()) return true;
    const bool areSaved = change([this](RuleBook& newest) {
        for (const Note& note : notes)
            note(newest);
    });
    if (areSaved) notes.clear();
    return areSaved;
}

bool Agent::change(const Note& note) {
    RuleBook changed;
    const auto saved = session.rules.change([&](RuleBook& newest) -> CommandResult {
        note(newest);
        changed = newest;
        return {};
    });
    if (!saved) {
        complain(saved.error().sentences.front());
        return false;
    }
    book = std::move(changed);
    updateLive();
    return true;
}

void Agent::hear(std::span<const RunReport> reports) {
    for (const RunReport& report : reports) {
        session.output.line(
            {localTime(report.startedAt) + "  ", {report.ruleName, Output::Style::bold}, "  ", logLine(report)});
        heard.push_back(report);
    }
}

void Agent::notify(const std::string& title, const std::string& body) {
    if (settings && !settings->settings().notificationsEnabled) return;
    // Asking the desktop may take seconds, in which a pause must be heard.
    tellings.push_back({title, body, std::async(std::launch::async, [=] { return showNotification(title, body); })});
}

void Agent::tellWhatWasNotShown() {
    std::erase_if(tellings, [this](Telling& telling) {
        if (telling.shown.wait_for(0s) != std::future_status::ready) return false;
        if (!telling.shown.get()) session.output.line({{telling.title + ". ", Output::Style::bold}, telling.body});
        return true;
    });
}

void Agent::complain(const std::string& sentence) {
    isTroubled = true;
    const bool isNew = troubles.insert(sentence).second && !troublesBefore.contains(sentence);
    if (isNew) session.output.notice(sentence);
}

bool Agent::isPaused() const {
    const auto chosen = settings ? settings->forAutomation() : std::nullopt;
    return !chosen || chosen->automaticCleaningPaused;
}

}  // namespace vostrel::cli
