#include "cleaning/LogPruning.h"

#include <utility>

#include "base/Checked.h"
#include "base/LocalTime.h"
#include "stores/LineFile.h"

namespace vostrel {

LogPruning::LogPruning(const std::filesystem::path& folder, const std::filesystem::path& detailFolder, RunsOf runsOfDay)
    : days(dayFilesIn(folder)), runsOf(std::move(runsOfDay)) {
    for (auto& file : detailFilesIn(detailFolder))
        details.emplace(file.name, std::move(file));
    for (const auto& file : days)
        totalBytes = saturatingAdd(totalBytes, file.size);
    for (const auto& [name, file] : details)
        totalBytes = saturatingAdd(totalBytes, file.size);
}

void LogPruning::removeBefore(const std::string& dayFileName) {
    std::erase_if(days, [&](const LogFile& day) { return day.name < dayFileName && removeDay(day); });
    std::erase_if(details, [&](const auto& each) {
        return localDay(each.second.modified) + ".jsonl" < dayFileName && remove(each.second);
    });
}

void LogPruning::removeDownTo(std::int64_t mostBytes) {
    std::size_t tried = 0;
    while (totalBytes > mostBytes && tried + 1 < days.size())
        removeDay(days[tried++]);
}

bool LogPruning::removeDay(const LogFile& day) {
    const auto runs = runsOf(day.url);
    if (!remove(day)) return false;
    for (const std::string& name : runs) {
        const auto found = details.find(name);
        if (found != details.end() && remove(found->second)) details.erase(found);
    }
    return true;
}

bool LogPruning::remove(const LogFile& file) {
    if (!LineFile{file.url}.remove()) return false;
    ++filesGone;
    bytesGone += file.size;
    totalBytes -= file.size;
    return true;
}

}  // namespace vostrel
