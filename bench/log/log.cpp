// Makes a clean log, or reads one in one of several ways and says how much of it that took:
//   log make FOLDER DAYS BYTES      day files of about that size
//   log bytes FOLDER                every day file, nothing decoded
//   log built FOLDER                every record, its long lists built
//   log recent FOLDER [N]           the newest N runs, or all, as lists show them
#include <fmt/format.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string_view>

#include "cleaning/CleanLog.h"
#include "cleaning/LogFolder.h"
#include "cleaning/RunFields.h"
#include "stores/JSONCoding.h"

namespace {

using namespace vostrel;
namespace fs = std::filesystem;

constexpr int itemsInRun = 200;

RunReport startedRun(Date at) {
    Rule rule;
    rule.name = "Old downloads";
    CleanupPlan plan;
    for (int number = 0; number < itemsInRun; ++number) {
        PlannedItem& item = plan.items.emplace_back();
        item.url = fmt::format("/home/ann/Downloads/some folder/a file with a usual name {:05}.zip", number);
        item.bytes = 4096L * number;
    }
    return RunReport::started(Uuid::random(), rule, plan, RunTrigger::schedule, at);
}

RunReport endedRun(const RunReport& started) {
    std::vector<ItemOutcome> outcomes;
    for (const fs::path& path : started.plannedPaths) {
        ItemOutcome& outcome = outcomes.emplace_back();
        outcome.path = path;
        outcome.bytes = 4096;
        outcome.status = ItemOutcome::Status::trashed;
        outcome.trashPath = "/home/ann/.local/share/Trash/files" / path.filename();
    }
    return started.finished(started.startedAt + std::chrono::seconds(20), std::move(outcomes),
                            RunReport::Ending::finished, 0, {});
}

void make(const fs::path& folder, int days, std::int64_t bytes) {
    fs::create_directories(folder);
    const auto encoder = JSONCoding::encoder(JSONLayout::compact);
    const CleanLog log(folder);
    for (int day = 0; day < days; ++day) {
        Date at = Date::fromSeconds(1'741'345'200) - std::chrono::hours(24 * day);
        std::ofstream file(log.fileURL(at), std::ios::binary);
        while (file.tellp() < bytes) {
            const RunReport started = startedRun(at);
            file << encoder.encode(started).value() << "\n" << encoder.encode(endedRun(started)).value() << "\n";
            at = at + std::chrono::seconds(60);
        }
    }
}

/// The log's own reading, with a count.
struct CountedReading {
    std::size_t files = 0;
    std::size_t bytes = 0;

    [[nodiscard]] CleanLog::IO io() {
        auto io = CleanLog::IO::system();
        io.read = [this, read = io.read](const fs::path& file) {
            auto content = read(file);
            ++files;
            bytes += content ? content->size() : 0;
            return content;
        };
        return io;
    }
};

/// How many records there are; with a decoder they are built.
std::size_t readEverything(const fs::path& folder, const CleanLog::IO& io, bool builds) {
    std::size_t records = 0;
    for (const LogFile& day : dayFilesIn(folder)) {
        const std::string text = io.read(day.url).value();
        for (std::string_view rest = text; !rest.empty();) {
            const auto end = rest.find('\n');
            if (!builds || JSONCoding::decoder().decode<RunReport>(rest.substr(0, end))) ++records;
            rest.remove_prefix(end + 1);
        }
    }
    return records;
}

}  // namespace

int main(int count, char** arguments) {
    const std::string_view way = count > 2 ? arguments[1] : "";
    const fs::path folder = count > 2 ? arguments[2] : "";
    CountedReading reading;
    std::size_t found = 0;
    if (way == "make" && count == 5) {
        make(folder, std::atoi(arguments[3]), std::atoll(arguments[4]));
    } else if (way == "bytes" || way == "built") {
        found = readEverything(folder, reading.io(), way == "built");
    } else if (way == "recent") {
        const auto limit =
            count > 3 ? static_cast<std::size_t>(std::atoll(arguments[3])) : std::numeric_limits<std::size_t>::max();
        found = CleanLog(folder, reading.io()).recent(limit).size();
    } else {
        fmt::print(stderr, "usage: log make FOLDER DAYS BYTES | bytes FOLDER | built FOLDER | recent FOLDER [N]\n");
        return 2;
    }
    fmt::print("found {} files {} bytes {}\n", found, reading.files, reading.bytes);
}
