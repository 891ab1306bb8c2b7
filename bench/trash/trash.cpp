// Moves every item of a folder to the Trash of a home, each as its own request:
//   trash HOME FOLDER
#include "platform/Trash.h"

#include <fcntl.h>
#include <fmt/format.h>

#include <filesystem>
#include <vector>

#include "platform/FileStatus.h"
#include "platform/OwnedDescriptor.h"

int main(int count, char** arguments) {
    using namespace vostrel;
    if (count != 3) {
        fmt::print(stderr, "usage: trash HOME FOLDER\n");
        return 2;
    }
    const std::filesystem::path home = std::filesystem::canonical(arguments[1]);
    const std::filesystem::path folder = std::filesystem::canonical(arguments[2]);
    std::vector<std::filesystem::path> items;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        items.push_back(entry.path());
    for (const auto& path : items) {
        const OwnedDescriptor parent(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        const auto status = statusOfEntry(parent.get(), path.filename().c_str());
        if (!status) return 1;
        const auto moved = moveToTrash({parent.get(), path, status->device, status->inode}, home, Date::now());
        if (!moved) {
            fmt::print(stderr, "{}: {}\n", path.native(), moved.error());
            return 1;
        }
    }
}
