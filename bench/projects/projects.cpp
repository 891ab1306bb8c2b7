// Finds the build folders of projects below a code folder inside a home folder and dates the projects, and prints what
// it found; with "count" also how many entries were listed:
//   projects HOME FOLDER [HELPERS|count]
#include <fmt/format.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <string_view>

#include "filesystem/GuardSurroundings.h"
#include "filesystem/PathGuards.h"
#include "rules/ProjectScanner.h"

namespace {

using namespace vostrel;

/// The file system, with a count of what its listings report.
class CountingSource final : public FolderSource {
public:
    std::expected<FileStatus, int> lookUp(const std::string& path) override { return system.lookUp(path); }
    std::expected<std::string, int> resolve(const std::string& path) override { return system.resolve(path); }
    int open(const std::string& path) override { return system.open(path); }
    std::expected<FileStatus, int> status(int folder) override { return system.status(folder); }
    std::expected<FolderListing::Step, int> readSome(int folder, FolderListing& listing, EntrySink& sink) override {
        CountingSink counting(sink, entries);
        return system.readSome(folder, listing, counting);
    }
    void close(int folder) override { system.close(folder); }

    std::atomic<std::size_t> entries = 0;

private:
    struct CountingSink final : EntrySink {
        CountingSink(EntrySink& sink, std::atomic<std::size_t>& total) : next(sink), count(total) {}
        void entry(const FolderEntry& entry) override {
            ++count;
            next.entry(entry);
        }
        EntrySink& next;
        std::atomic<std::size_t>& count;
    };

    SystemFolderSource system;
};

}  // namespace

int main(int count, char** arguments) {
    if (count < 3) {
        fmt::print(stderr, "usage: projects HOME FOLDER [HELPERS|count]\n");
        return 2;
    }
    GuardSurroundings surroundings = GuardSurroundings::of(std::filesystem::canonical(arguments[1]), {});
    surroundings.accountHome.clear();
    const PathGuards guards(surroundings);
    const std::filesystem::path folder = std::filesystem::canonical(arguments[2]);
    const std::string_view option = count > 3 ? arguments[3] : "";
    const bool counts = option == "count";
    const unsigned helpers =
        option.empty() || counts ? FolderWalk::usualHelpers() : static_cast<unsigned>(std::atoi(arguments[3]));
    SystemFolderSource plain;
    CountingSource counting;
    FolderSource& source = counts ? static_cast<FolderSource&>(counting) : plain;
    const auto status = source.lookUp(folder.native());
    if (!status) return 1;

    const ProjectScanner scanner(guards, source, helpers);
    const auto found = scanner.discover(folder, {}, {status->device, status->mount}, {ArtifactKind::nodeModules}, {});
    fmt::print("candidates {} leftOut {} unreadable {} listed {}\n", found.candidates.size(), found.leftOut.size(),
               found.unreadable.size(), counting.entries.load());
    return found.rootError == 0 ? 0 : 1;
}
