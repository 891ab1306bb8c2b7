#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <set>
#include <utility>

#include "base/SpaceFormat.h"
#include "cleaning/CleanupPlanner.h"
#include "cli/Cleaning.h"
#include "cli/Commands.h"
#include "cli/FindDisplay.h"
#include "cli/Interrupt.h"
#include "cli/MapDisplay.h"
#include "cli/PlanDisplay.h"
#include "cli/RunDisplay.h"
#include "cli/SampleHome.h"
#include "cli/Session.h"
#include "cli/SpaceDisplay.h"
#include "platform/FileStatus.h"

namespace vostrel::cli {

namespace {

constexpr std::chrono::days ahead{40};

/// Something that the demonstration says of itself, and whether it turned out so.
struct Claim {
    std::string text;
    bool holds = false;
};

Rule oldDownloads(const SampleHome& sample, Date now) {
    Rule rule;
    rule.id = Uuid::random();
    rule.name = "Old downloads";
    rule.target = FolderTarget{sample.downloads()};
    rule.filter.minAgeDays = 30;
    rule.filter.ageBasis = AgeBasis::added;
    rule.filter.excludeGlobs = {"*.keep"};
    rule.triggers = {DailyTrigger{.hour = 9, .minute = 5}};
    rule.createdAt = now;
    return rule;
}

/// Adds up blocks on the disk without the library's walk, a hard-linked file once.
class BlockCount {
public:
    void add(const std::filesystem::path& path) {
        const auto status = statusOfPath(path);
        if (!status || status->type == EntryType::folder || status->type == EntryType::link) return;
        if (counted.insert({status->device, status->inode}).second) bytes += status->allocated;
    }
    void addBelow(const std::filesystem::path& folder) {
        std::error_code failure;
        for (std::filesystem::recursive_directory_iterator entry(folder, failure), end; !failure && entry != end;
             entry.increment(failure)) {
            add(entry->path());
        }
    }
    [[nodiscard]] std::int64_t sum() const { return bytes; }

private:
    std::set<FileIdentity> counted;
    std::int64_t bytes = 0;
};

std::int64_t bytesOnDisk(const CleanupPlan& plan) {
    BlockCount count;
    for (const auto& item : plan.items) {
        count.add(item.url);
        if (item.isDirectory) count.addBelow(item.url);
    }
    return count.sum();
}

bool isPlanned(const CleanupPlan& plan, const std::filesystem::path& path) {
    return std::ranges::any_of(plan.items, [&](const PlannedItem& item) {
        return path == item.url || path.native().starts_with(item.url.native() + "/");
    });
}

class Demonstration {
public:
    Demonstration(Session& inSession, const SampleHome& sampleHome) : session(inSession), sample(sampleHome) {}

    CommandResult run() {
        introduce();
        if (auto read = showSpace(); !read) return read;
        showRefusals();
        const Rule rule = oldDownloads(sample, session.clock());
        if (auto made = makeRule(rule); !made) return made;
        const auto plan = preview(rule);
        if (!plan) return failed(plan.error().sentence);
        if (auto approved = approve(rule, *plan); !approved) return approved;
        if (auto previewed = previewPresets(); !previewed) return previewed;
        if (auto previewed = previewProjects(); !previewed) return previewed;
        map();
        search();
        check(*plan);
        if (auto cleaned = clean(rule, *plan); !cleaned) return cleaned;
        return conclude();
    }

private:
    void heading(const std::string& text) {
        session.output.line();
        session.output.line({{text, Output::Style::bold}});
    }

    void introduce() {
        session.output.line({{"A demonstration in a sample home folder", Output::Style::bold}});
        session.output.line({"It was made for this run in " + sample.home().parent_path().native() +
                             ", where the clock stands 40 days ahead,"});
        session.output.line({"and goes again at the end. Nothing outside it is touched."});
    }

    CommandResult showSpace() {
        heading("The free space here");
        const AppSettings settings;
        const auto reading = session.monitor(settings).tick(session.clock(), SpaceMonitor::Refresh::forced);
        if (!reading) return failed(reading.error().sentence(sample.home()));
        showReading(session.output, *reading, settings);
        std::error_code failure;
        const auto total = std::filesystem::space(sample.home(), failure).capacity;
        const bool agrees = !failure && std::cmp_equal(reading->capacity.total, total);
        claims.push_back({"the size of the disk is what the system says", agrees});
        return {};
    }

    void showRefusals() {
        heading("1. Some places no rule may clean");
        for (const auto& place : {sample.home() / "Documents", sample.home() / ".ssh", sample.home(),
                                  std::filesystem::path("/usr/share")}) {
            const auto refusal = session.guards.refusalForRoot(place);
            session.output.line({"  " + refusal.value_or(session.guards.displayPath(place) + " could be cleaned.")});
            claims.push_back({session.guards.displayPath(place) + " is refused", refusal.has_value()});
        }
    }

    CommandResult makeRule(const Rule& rule) {
        heading("2. A rule is made, checked and saved");
        session.output.line(
            {"  \"Old downloads\": what arrived in ~/Downloads more than 30 days ago goes to the Trash, every"});
        session.output.line({"  day at 09:05; nothing named *.keep, nor a folder that holds such a name."});
        const auto problems = rule.validationProblems(session.guards, session.resolver, session.catalog);
        for (const auto& problem : problems)
            session.output.line({"  " + problem});
        claims.push_back({"the rule has no problems", problems.empty()});

        const auto saved = session.rules.change([&](RuleBook& book) -> CommandResult {
            book.add(rule);
            return {};
        });
        if (!saved) return saved;
        const auto read = session.rules.load();
        const bool isRead = read && read->rules.size() == 1 && read->rules.front() == rule;
        claims.push_back({"the saved rule reads back as it was", isRead});
        session.output.line({"  Saved in " + (session.places.data / "rules.json").native() + "."});
        return {};
    }

    [[nodiscard]] std::expected<CleanupPlan, PlanError> planned(const Rule& rule) const {
        const CleanupPlanner planner{
            .guards = session.guards, .resolver = resolver, .catalog = session.catalog, .clock = session.clock};
        return planner.plan(rule, session.clock(), &Interrupt::requested);
    }

    std::expected<CleanupPlan, PlanError> preview(const Rule& rule) {
        heading("3. The preview: what would go, what stays and why");
        before = sample.stamps();
        auto plan = planned(rule);
        if (!plan) return plan;
        showPlan(session.output, session.guards, *plan);
        session.output.line();
        session.output.line(
            {"  \"lecture.mov\" and its copy are two names of one file on the disk, which counts once."});
        return plan;
    }

    CommandResult approve(const Rule& rule, const CleanupPlan& plan) {
        heading("4. The preview is approved");
        const auto saved = session.rules.change([&](RuleBook& book) -> CommandResult {
            if (book.approvePreview(rule, plan, session.catalog, session.clock())) return {};
            return failed("The preview could not be approved.");
        });
        if (!saved) return saved;
        const auto stored = session.rules.load();
        const auto key = rule.approvalKey(plan.rootIdentities(), session.catalog);
        const bool isStored = stored && stored->rules.size() == 1 && stored->rules.front().approval == key;
        claims.push_back({"the approval is stored with the rule", isStored});

        Rule edited = rule;
        edited.filter.minAgeDays = 29;
        const bool isWithdrawn = edited.approvalKey(plan.rootIdentities(), session.catalog) != key;
        claims.push_back({"changing what the rule takes withdraws the approval", isWithdrawn});
        session.output.line({"  From now on the rule may run by itself, as long as it says what was approved and its"});
        session.output.line({"  folder is the one that was previewed."});
        return {};
    }

    CommandResult previewPresets() {
        heading("5. Presets: ready-made rules for what is already here");
        for (const char* id : {"npm-cache", "screenshots"}) {
            const Preset* preset = session.catalog.preset(id);
            if (!preset) return failed("A preset is missing.");
            session.output.line();
            session.output.line({{preset->name, Output::Style::bold}, ": " + preset->summary});
            const Rule draft = preset->draftRule(session.clock());
            const auto plan = planned(draft);
            if (!plan) return failed(plan.error().sentence);
            showPlan(session.output, session.guards, *plan);
            checkPreset(*preset, *plan);
            shown.emplace_back(draft, *plan);
        }
        return {};
    }

    void checkPreset(const Preset& preset, const CleanupPlan& plan) {
        const bool isRight = plan.items.size() == 2 && plan.totalBytes() == bytesOnDisk(plan) &&
                             !isPlanned(plan, sample.home() / ".npm/_cacache/my own notes/idea.txt") &&
                             !isPlanned(plan, sample.home() / "Desktop/Screenshot for grandma.png") &&
                             !isPlanned(plan, sample.home() / "Desktop/todo.txt");
        claims.push_back(
            {"the preset \"" + preset.name + "\" takes what has its names and nothing beside it", isRight});
    }

    CommandResult previewProjects() {
        heading("6. Build folders of projects that nobody has touched for 30 days");
        Rule rule;
        rule.id = Uuid::random();
        rule.name = "Old builds";
        rule.target =
            ProjectScanTarget{{sample.home() / "Code"}, {ArtifactKind::nodeModules, ArtifactKind::target}, 30};
        rule.createdAt = session.clock();
        const auto plan = planned(rule);
        if (!plan) return failed(plan.error().sentence);
        showPlan(session.output, session.guards, *plan);
        session.output.line();
        session.output.line({"  ~/Code/atlas was worked on two days ago, so its packages are no part of this."});
        checkProjects(*plan);
        shown.emplace_back(rule, *plan);
        return {};
    }

    void checkProjects(const CleanupPlan& plan) {
        const auto code = sample.home() / "Code";
        const bool isRight = plan.items.size() == 1 && plan.totalBytes() == bytesOnDisk(plan) &&
                             plan.items.front().url == code / "shop/node_modules";
        claims.push_back({"of the projects only the untouched one's packages would go", isRight});
        const bool isNamed = std::ranges::any_of(plan.skipped, [&](const SkippedItem& item) {
            return item.url == code / "archery/target" && item.reason == SkipReason::noToolSignature;
        });
        claims.push_back({"a folder that a person named \"target\" stays", isNamed});
    }

    void map() {
        heading("7. The space map: where the space of the home goes");
        const auto scanned = session.spaceScanner().scan(SpaceScanTarget::folder(sample.home()), nullptr, {});
        constexpr MapExtent shortly{.lines = 8, .levels = 2};
        showMap(session.output, session.guards, scanned.tree, {}, shortly);
        BlockCount count;
        count.addBelow(sample.home());
        claims.push_back(
            {"the map's total agrees with the blocks on the disk", scanned.tree.root().bytes == count.sum()});
    }

    void search() {
        heading("8. Large, old and duplicate files");
        const FinderRequest request{.roots = {sample.home().native()},
                                    .criteria = {.largeBytes = 3'000'000, .oldMonths = 1, .oldMinBytes = 2'000'000},
                                    .now = session.clock()};
        const FinderResult found = session.finderScanner().scan(request, nullptr, &Interrupt::requested);
        showFound(session.output, session.guards, found, {});
        const bool isRight = found.groups.size() == 1 && found.groups.front().copies.size() == 2 &&
                             found.groups.front().copies.front().path.full().filename() == "summer.jpg";
        claims.push_back({"the only duplicates are the two pictures of one summer", isRight});
        const bool isOld = !found.old.empty() && std::ranges::none_of(found.old, [&](const FinderFile& file) {
            return file.path.full().filename() == "still downloading.part";
        });
        claims.push_back({"what nobody used for a month is found, and nothing fresh", isOld});
    }

    void check(const CleanupPlan& plan) {
        claims.push_back({"the total agrees with the blocks on the disk, hard links counted once",
                          plan.totalBytes() == bytesOnDisk(plan)});
        claims.push_back({"nothing in the sample home changed", before == sample.stamps()});
        const bool isKept = std::ranges::none_of(
            std::to_array<const char*>({"Downloads/taxes/2025.keep", "Downloads/still downloading.part",
                                        "Downloads/Family.photoslibrary/database/photos.db", "Pictures/summer.jpg",
                                        "Documents/letter to the bank.txt"}),
            [&](const char* path) { return isPlanned(plan, sample.home() / path); });
        claims.push_back(
            {"no protected, excluded or fresh file is among what would go", isKept && !plan.items.empty()});
    }

    /// Carries out the previews that were shown, each item checked again right before it goes.
    CommandResult clean(const Rule& rule, const CleanupPlan& plan) {
        heading("9. The rules run: every item is checked once more, then it goes");
        const auto saved = session.rules.change([&](RuleBook& book) -> CommandResult {
            for (const auto& [other, itsPlan] : shown)
                book.add(other);
            return {};
        });
        if (!saved) return saved;
        shown.emplace_back(rule, plan);
        const Cleaning cleaning(session);
        const RunControl control(&Interrupt::requested);
        bool wentWell = true;
        for (const auto& [each, itsPlan] : shown) {
            const auto report = cleaning.runner.run(each, itsPlan, cleaning.presentOf(each), control);
            session.output.line({"  ", {each.name, Output::Style::bold}, ": " + logLine(report)});
            wentWell = wentWell && report.itemsCleaned == report.plannedItems &&
                       report.deletedBytes + report.movedToTrashBytes == itsPlan.totalBytes();
        }
        claims.push_back({"every item of the previews went, with the bytes that were shown", wentWell});
        session.output.line();
        session.output.line({"  The log has them all:"});
        const auto runs = session.log.recent(shown.size());
        showRuns(session.output, runs, session.runLock.runInHand());
        claims.push_back({"the log tells of every run", runs.size() == shown.size()});
        checkWhatStayed();
        return {};
    }

    void checkWhatStayed() {
        const auto after = sample.stamps();
        const auto went = [&](const std::filesystem::path& path) {
            return std::ranges::any_of(shown, [&](const auto& each) { return isPlanned(each.second, path); });
        };
        // A folder from which something went has another date than before.
        const auto heldWhatWent = [&](const std::filesystem::path& path) {
            return std::ranges::any_of(shown, [&](const auto& each) {
                return std::ranges::any_of(each.second.items,
                                           [&](const PlannedItem& item) { return item.url.parent_path() == path; });
            });
        };
        const bool isWhole = std::ranges::all_of(before, [&](const auto& entry) {
            const auto path = sample.home() / entry.first;
            const auto now = after.find(entry.first);
            if (went(path)) return now == after.end();
            return now != after.end() && (heldWhatWent(path) || now->second == entry.second);
        });
        claims.push_back({"what was shown is gone from its place, and everything else is as it was", isWhole});
    }

    CommandResult conclude() {
        heading("The demonstration checked what it said");
        JSONArray listed;
        bool isTrue = true;
        for (const auto& claim : claims) {
            const auto mark =
                claim.holds ? Output::Text("yes", Output::Style::good) : Output::Text("NO ", Output::Style::warning);
            session.output.line({"  ", mark, "  " + claim.text});
            listed.emplace_back(JSONObject{{"claim", claim.text}, {"holds", claim.holds}});
            isTrue = isTrue && claim.holds;
        }
        if (auto written = session.output.document(JSONObject{{"claims", std::move(listed)}}); !written) return written;
        if (isTrue) return {};
        return std::unexpected(Failure{.sentences = {"The demonstration found something that is not as it said."},
                                       .document = Failure::Document::written});
    }

    Session& session;
    const SampleHome& sample;
    /// What the user's own applications have stored is about another home than this one.
    const FixedDefaults noSettings{{}};
    const TargetResolver resolver{session.places.home, noSettings, session.guards};
    std::vector<Claim> claims;
    /// The rules whose previews were shown, to be run in the end.
    std::vector<std::pair<Rule, CleanupPlan>> shown;
    std::map<std::string, SampleHome::Stamp> before;
};

CommandResult demonstrate(Program& program) {
    const Clock clock = [] { return Date::now() + ahead; };
    const auto sample = SampleHome::make(clock());
    if (!sample) return failed("The sample home could not be made. " + sample.error().description() + ".");
    GlobalOptions options = program.options;
    options.home = sample->home();
    options.data = sample->data();
    auto places = placesFor(options);
    if (!places) return std::unexpected(std::move(places.error()));
    Session session(program.output, clock, std::move(*places));
    return Demonstration(session, *sample).run();
}

}  // namespace

void addDemoCommand(CLI::App& app, Command& chosen) {
    app.add_subcommand("demo", "Walk the whole road in a sample home that is made for it and goes again")
        ->fallthrough()
        ->callback([&chosen] { chosen = demonstrate; });
}

}  // namespace vostrel::cli
