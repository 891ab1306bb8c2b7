#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Date.h"
#include "base/SystemError.h"
#include "base/Uuid.h"
#include "cleaning/RunReport.h"
#include "stores/JSONCoding.h"

namespace vostrel {

/// The log of all runs: for each day a file with two records of each run, one from before anything is touched and one
/// from its end, and for each run a detail file with its long lists.
///
/// A run writes under the run lock; anybody may read at any time. Nothing here fails to its caller: what cannot be
/// written goes to the system's log, what cannot be read is passed over. Holds no state between calls; any thread.
class CleanLog {
public:
    static constexpr int retentionDays = 90;
    static constexpr std::int64_t defaultMaxTotalBytes = 200'000'000;

    struct IO {
        /// Appends a line to a file, which is made where there is none, and returns once it is on the disk.
        std::function<std::expected<void, SystemError>(std::string_view line, const std::filesystem::path& file)>
            appendLine;
        /// The whole file; nothing when it cannot be read.
        std::function<std::optional<std::string>(const std::filesystem::path& file)> read;

        [[nodiscard]] static IO system();
    };

    /// `maxTotalBytes`: above it, pruning removes the oldest days.
    explicit CleanLog(std::filesystem::path folder, IO access = IO::system(),
                      std::int64_t mostBytes = defaultMaxTotalBytes)
        : directory(std::move(folder)), io(std::move(access)), maxTotalBytes(mostBytes) {}

    /// "2025-03-07.jsonl": the file of the local calendar day.
    [[nodiscard]] std::filesystem::path fileURL(Date day) const;
    /// "runs/0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0.jsonl"
    [[nodiscard]] std::filesystem::path sidecarURL(const Uuid& run) const;

    enum class StartedRecord {
        full,
        compact,  ///< only the record without lists
        notWritten,
    };
    /// Writes the record of a run that is about to begin. It is on the disk when this returns; a run whose record is
    /// `notWritten` must remove nothing.
    [[nodiscard]] StartedRecord appendStarted(const RunReport& report) const;
    /// Writes any record; whether it is in the log now, with or without its lists.
    [[nodiscard]] bool append(const RunReport& report) const;

    /// The newest runs, newest first, without their long lists, from no more files than it takes.
    [[nodiscard]] std::vector<RunReport> recent(std::size_t limit) const;
    /// All runs that started then or later, in the same form and order.
    [[nodiscard]] std::vector<RunReport> reports(Date since) const;
    /// What of the log cannot be read, so that runs may be missing from the lists: the folder itself, or day files.
    [[nodiscard]] std::vector<std::filesystem::path> unreadable() const;
    /// The long lists of a run; empty ones when its detail file is missing.
    [[nodiscard]] RunDetails details(const Uuid& run) const;
    /// A run with its long lists: those of its detail file, else those of its record.
    [[nodiscard]] RunReport withLists(RunReport listed) const;

    struct Pruned {
        std::int64_t files = 0;
        std::int64_t bytes = 0;
    };
    /// Removes each day more than 90 days ago, and then the oldest days while the files hold more than `maxTotalBytes`,
    /// but for the newest one; with every day the detail files of its runs. Says what it removed. A file that is being
    /// written to just now stays for the next time.
    [[nodiscard]] Pruned prune(Date now) const;

private:
    /// The readable records of a day, in the file's order.
    [[nodiscard]] std::vector<RunReport> recordsIn(const std::filesystem::path& dayFile,
                                                   const JSONDecoder& decoder) const;
    [[nodiscard]] std::vector<RunReport> summariesIn(const std::filesystem::path& dayFile) const;
    /// The names of the detail files of a day's runs.
    [[nodiscard]] std::vector<std::string> detailFilesOf(const std::filesystem::path& dayFile) const;
    /// Appends a value as a line; what could not be written is named in the system's log.
    template <class Value>
    [[nodiscard]] bool write(const Value& value, const std::filesystem::path& file, const char* what,
                             const Uuid& run) const;

    std::filesystem::path directory;
    IO io;
    std::int64_t maxTotalBytes;
};

}  // namespace vostrel
