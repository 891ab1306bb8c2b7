#include "support/TemporaryFolder.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace vostrel {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
    std::string pattern = (fs::canonical(fs::temp_directory_path()) / "vostrel-test-XXXXXX").native();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder could be made");
    folder = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    for (fs::recursive_directory_iterator entry(folder, ignored), end; !ignored && entry != end;
         entry.increment(ignored)) {
        if (entry->symlink_status(ignored).type() == fs::file_type::directory)
            fs::permissions(entry->path(), fs::perms::owner_all, fs::perm_options::add, ignored);
    }
    fs::remove_all(folder, ignored);
}

fs::path TemporaryFolder::makeFolder(std::string_view relative) const {
    fs::create_directories(folder / relative);
    return folder / relative;
}

fs::path TemporaryFolder::makeFile(std::string_view relative, std::string_view content) const {
    const auto file = folder / relative;
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
    return file;
}

fs::path TemporaryFolder::makeLink(std::string_view relative, const fs::path& target) const {
    const auto link = folder / relative;
    fs::create_directories(link.parent_path());
    fs::create_symlink(target, link);
    return link;
}

std::string TemporaryFolder::read(std::string_view relative) const {
    std::ifstream file(folder / relative, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> TemporaryFolder::names(std::string_view relative) const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder / relative))
        names.push_back(entry.path().filename());
    std::ranges::sort(names);
    return names;
}

}  // namespace vostrel
