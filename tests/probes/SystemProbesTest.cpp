#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "probes/ProbeResultsFields.h"
#include "probes/SimulatorImagesPlist.h"
#include "probes/SoftwareUpdatePlist.h"
#include "probes/SystemProbes.h"
#include "stores/JSONCoding.h"

namespace vostrel {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::Pair;
using Kind = ProcessFailure::Kind;

const Date now = Date::fromSeconds(1'740'992'707);

constexpr const char* imagesPlist = R"(<plist version="1.0"><dict><key>images</key><array><dict>
    <key>uuid</key><string>0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0</string><key>path</key><string>/image</string>
    </dict></array></dict></plist>)";

/// A Mac that answers everything; each test changes what it is about.
struct SampleMac {
    std::map<ProbeCommand, ProcessResult> answers{
        {ProbeCommand::swapUsage(),
         ProcessOutput{.output = "vm.swapusage: total = 3.00K  used = 2.00K  free = 1.00K", .errors = {}}},
        {ProbeCommand::localSnapshots(), ProcessOutput{.output = "Snapshots for disk /:\na.b\n", .errors = {}}},
        {ProbeCommand::topMemory(),
         ProcessOutput{.output = "PID COMMAND MEM\n1 Google Chrome He 2K\n2 Google Chrome He 1K\n3 h\xffi 1K\n",
                       .errors = {}}},
    };
    std::map<std::filesystem::path, std::string> files{
        {SoftwareUpdatePlist::path, "<plist version=\"1.0\"><dict/></plist>"},
        {SimulatorImagesPlist::path, imagesPlist}};
    std::map<std::filesystem::path, bool> folders{{"/Library", true}, {SimulatorImagesPlist::folder, true}};
    std::shared_ptr<FixedProcessRunner> runner;

    ProbeResults run(const WalkBudget& budget) {
        runner = std::make_shared<FixedProcessRunner>(answers);
        const SystemProbes probes{
            .runner = runner,
            .readFile = [this](const auto& path) { return found(files, path); },
            .folderExists = [this](const auto& path) { return found(folders, path); },
            .allocatedSize =
                [](const auto& path) { return path == "/image" ? std::optional<std::int64_t>(7) : std::nullopt; },
            .executablePath =
                [](std::int32_t pid) {
                    return pid == 1 ? std::optional<std::filesystem::path>("/a/Google Chrome Helper") : std::nullopt;
                }};
        return probes.run(budget);
    }
    ProbeResults run() {
        return run({.deadline = now + 600s, .isCancelled = {}, .clock = [] { return now; }});
    }

    template <class Map>
    static std::optional<typename Map::mapped_type> found(const Map& map, const std::filesystem::path& path) {
        const auto entry = map.find(path);
        return entry == map.end() ? std::nullopt : std::optional(entry->second);
    }
};

TEST(SystemProbes, tellsWhatTheSystemAnswers) {
    SampleMac mac;
    const ProbeResults results = mac.run();
    EXPECT_EQ(*JSONCoding::encoder(JSONLayout::compact).encode(results),
              R"({"localSnapshots":{"known":["a.b"]},)"
              R"("memory":{"known":[{"bytes":2048,"name":"Google Chrome Helper","processes":1},)"
              R"({"bytes":1024,"name":"Google Chrome He","processes":1},{"bytes":1024,"name":"h�i","processes":1}]},)"
              R"("simulatorImages":{"known":[{"bytes":7,"identifier":"0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0",)"
              R"("path":"/image"}]},"swap":{"known":{"freeBytes":1024,"totalBytes":3072,"usedBytes":2048}},)"
              R"("updatePlist":{"known":{"updates":[]}}})");
    EXPECT_THAT(mac.runner->calls(),
                ElementsAre(Pair(ProbeCommand::swapUsage(), 5s), Pair(ProbeCommand::localSnapshots(), 15s),
                            Pair(ProbeCommand::topMemory(), 10s)));
}

TEST(SystemProbes, tellsWhyAnAnswerIsUnknown) {
    const std::pair<ProcessResult, ProbeUnknown> cases[] = {
        {std::unexpected(ProcessFailure{Kind::timedOut}), ProbeUnknown::timedOut},
        {std::unexpected(ProcessFailure{Kind::cancelled}), ProbeUnknown::cancelled},
        {std::unexpected(ProcessFailure{Kind::exited, 1}), ProbeUnknown::failed},
        {std::unexpected(ProcessFailure{Kind::outputTooLarge}), ProbeUnknown::failed},
        {ProcessOutput{.output = "?", .errors = {}}, ProbeUnknown::unrecognized},
    };
    for (const auto& [result, reason] : cases) {
        SampleMac mac;
        for (auto& [command, answer] : mac.answers)
            answer = result;
        for (auto& [path, content] : mac.files)
            content = "?";
        const ProbeResults results = mac.run();
        EXPECT_EQ(results.swap.unknown(), reason);
        EXPECT_EQ(results.localSnapshots.unknown(), reason);
        EXPECT_EQ(results.memory.unknown(), reason);
        EXPECT_EQ(results.updatePlist.unknown(), ProbeUnknown::unrecognized);
        EXPECT_EQ(results.simulatorImages.unknown(), ProbeUnknown::unrecognized);
    }
}

TEST(SystemProbes, takesAMissingFolderOfSimulatorsForNoneOnAMacOnly) {
    for (const bool isMac : {true, false}) {
        SampleMac mac;
        mac.files.clear();
        mac.folders = {{"/Library", isMac}, {SimulatorImagesPlist::folder, false}};
        const ProbeResults results = mac.run();
        EXPECT_EQ(results.updatePlist.unknown(), ProbeUnknown::unreadable);
        EXPECT_EQ(results.simulatorImages.value().has_value(), isMac);
    }
}

TEST(SystemProbes, keepsToTheDeadlineAndStopsWhenToldTo) {
    SampleMac mac;
    // Each look at the clock takes two seconds.
    Date present = now;
    const ProbeResults hurried =
        mac.run({.deadline = now + 11s, .isCancelled = {}, .clock = [&] { return present = present + 2s; }});
    EXPECT_TRUE(hurried.swap.value());
    EXPECT_TRUE(hurried.localSnapshots.value());
    EXPECT_EQ(hurried.memory.unknown(), ProbeUnknown::notChecked);
    EXPECT_THAT(mac.runner->calls(),
                ElementsAre(Pair(ProbeCommand::swapUsage(), 5s), Pair(ProbeCommand::localSnapshots(), 3s)));

    ProbeResults cancelled = mac.run({.isCancelled = [] { return true; }});
    EXPECT_EQ(cancelled.swap.unknown(), ProbeUnknown::cancelled);
    EXPECT_EQ(cancelled.memory.unknown(), ProbeUnknown::cancelled);
    EXPECT_THAT(mac.runner->calls(), ElementsAre());
}

TEST(SystemProbes, readsBackWhatWasStored) {
    SampleMac mac;
    const ProbeResults results = mac.run();
    const auto text = *JSONCoding::encoder(JSONLayout::compact).encode(results);
    EXPECT_EQ(JSONCoding::decoder().decode<ProbeResults>(text), results);

    const auto damaged = JSONCoding::decoder().decode<ProbeResults>(
        R"({"swap":{"known":{"totalBytes":1}},"localSnapshots":{"known":["a"],"unknown":"failed"},"updatePlist":5,)"
        R"("simulatorImages":{"known":[{"identifier":"; rm","path":"/a"}]},"memory":{"unknown":"of a later version"}})");
    ASSERT_TRUE(damaged);
    ProbeResults expected = ProbeResults::notChecked();
    expected.memory = ProbeUnknown::failed;
    EXPECT_EQ(*damaged, expected);
}

}  // namespace
}  // namespace vostrel
