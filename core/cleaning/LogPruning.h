#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "cleaning/LogFolder.h"

namespace vostrel {

/// One pruning of a log folder, from its files as they are when this is made.
class LogPruning {
public:
    /// `runsOf` names the detail files of the runs that a day file holds.
    using RunsOf = std::function<std::vector<std::string>(const std::filesystem::path& dayFile)>;

    LogPruning(const std::filesystem::path& folder, const std::filesystem::path& detailFolder, RunsOf runsOfDay);

    /// Removes the days whose names sort before that one, and the detail files last written to before that day, which
    /// a day file that is gone or damaged may have left behind.
    void removeBefore(const std::string& dayFileName);
    /// Removes the oldest days until all files together hold no more than that; the newest day stays.
    void removeDownTo(std::int64_t mostBytes);

    [[nodiscard]] std::int64_t removedFiles() const { return filesGone; }
    [[nodiscard]] std::int64_t removedBytes() const { return bytesGone; }

private:
    /// Whether it is gone.
    bool remove(const LogFile& file);
    bool removeDay(const LogFile& day);

    /// Oldest first.
    std::vector<LogFile> days;
    /// By name.
    std::map<std::string, LogFile> details;
    RunsOf runsOf;
    std::int64_t totalBytes = 0;
    std::int64_t filesGone = 0;
    std::int64_t bytesGone = 0;
};

}  // namespace vostrel
