#include "cleaning/LogFolder.h"

#include <algorithm>
#include <string_view>

#include "platform/FileStatus.h"

namespace vostrel {

namespace {

namespace fs = std::filesystem;

/// Whether the name is such a stem, each "0" standing for a decimal digit and each "X" for one of a UUID's characters,
/// and the ending of every log file.
bool hasForm(std::string_view name, std::string_view stem) {
    constexpr std::string_view ending = ".jsonl";
    const auto fits = [](char letter, char form) {
        if (form == '0') return letter >= '0' && letter <= '9';
        if (form == 'X') return std::string_view("0123456789ABCDEF-").contains(letter);
        return letter == form;
    };
    return name.ends_with(ending) && std::ranges::equal(name.substr(0, name.size() - ending.size()), stem, fits);
}

std::vector<LogFile> filesIn(const fs::path& folder, std::string_view stem) {
    std::vector<LogFile> files;
    std::error_code problem;
    for (fs::directory_iterator entry(folder, problem), end; !problem && entry != end; entry.increment(problem)) {
        const fs::path& path = entry->path();
        if (!hasForm(path.filename().native(), stem)) continue;
        const auto status = statusOfPath(path);
        if (status && status->type == EntryType::file)
            files.push_back({path, path.filename(), status->length, status->modified});
    }
    return files;
}

}  // namespace

std::vector<LogFile> dayFilesIn(const fs::path& folder) {
    auto files = filesIn(folder, "0000-00-00");
    std::ranges::sort(files, {}, &LogFile::name);
    return files;
}

std::vector<LogFile> detailFilesIn(const fs::path& folder) {
    const auto status = statusOfPath(folder);
    if (!status || status->type != EntryType::folder) return {};
    return filesIn(folder, std::string(36, 'X'));
}

}  // namespace vostrel
