#include "cleaning/PlannerHome.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace vostrel {

namespace {

class EditingSink final : public EntrySink {
public:
    EditingSink(EntrySink& sink, const std::function<void(FolderEntry&)>& edit) : next(sink), change(edit) {}

    void entry(const FolderEntry& entry) override {
        FolderEntry changed = entry;
        change(changed);
        next.entry(changed);
    }

private:
    EntrySink& next;
    const std::function<void(FolderEntry&)>& change;
};

GuardSurroundings surroundingsOf(const std::filesystem::path& home) {
    GuardSurroundings surroundings = GuardSurroundings::of(home, {});
    surroundings.accountHome.clear();
    return surroundings;
}

}  // namespace

std::expected<FileStatus, int> TrickedSource::lookUp(const std::string& path) {
    return system.lookUp(path);
}

std::expected<std::string, int> TrickedSource::resolve(const std::string& path) {
    return system.resolve(path);
}

int TrickedSource::open(const std::string& path) {
    if (const int error = onOpen(path); error < 0) {
        errno = -error;
        return -1;
    }
    return system.open(path);
}

std::expected<FileStatus, int> TrickedSource::status(int folder) {
    return system.status(folder);
}

std::expected<FolderListing::Step, int> TrickedSource::readSome(int folder, FolderListing& listing, EntrySink& sink) {
    EditingSink editing(sink, onEntry);
    return system.readSome(folder, listing, editing);
}

void TrickedSource::close(int folder) {
    system.close(folder);
}

PlannerHome::PlannerHome(std::map<std::string, DefaultsValue> settings)
    : defaults(std::move(settings)),
      guards(surroundingsOf(home.path())),
      resolver(home.path(), defaults, guards, {effectiveUserID(), home / "temporary"}) {}

Rule PlannerHome::ruleOn(std::string_view folder) const {
    Rule rule;
    rule.id = Uuid::random();
    rule.name = "A rule";
    rule.target = FolderTarget{home / folder};
    rule.createdAt = now;
    return rule;
}

CleanupPlanner PlannerHome::planner() const {
    return {.guards = guards,
            .resolver = resolver,
            .catalog = catalog,
            .clock = [present = now] { return present; },
            .volume = volume,
            .source = source};
}

std::expected<CleanupPlan, PlanError> PlannerHome::plan(const Rule& rule) const {
    return planner().plan(rule, now);
}

Rule PlannerHome::ruleOf(std::string_view preset) const {
    return catalog.preset(preset)->draftRule(now);
}

std::vector<std::string> PlannerHome::validationProblems(const Rule& rule) const {
    return rule.validationProblems(guards, resolver, catalog);
}

void PlannerHome::setAge(std::string_view relative, Duration age) const {
    const Date date = now - age;
    const timespec time{.tv_sec = date.seconds(), .tv_nsec = date.nanosecondsOfSecond()};
    const timespec both[] = {time, time};
    utimensat(AT_FDCWD, (home / relative).c_str(), both, AT_SYMLINK_NOFOLLOW);
}

std::map<std::string, std::string> verdicts(const CleanupPlan& plan, const PlannerHome& home) {
    std::map<std::string, std::string> said;
    const auto relative = [&](const std::filesystem::path& url) {
        return url.lexically_relative(home.home.path()).native();
    };
    for (const auto& item : plan.items)
        said[relative(item.url)] = "planned";
    for (const auto& item : plan.skipped)
        said[relative(item.url)] = phrase(item.reason);
    return said;
}

std::int64_t independentSum(const std::filesystem::path& folder) {
    std::int64_t sum = 0;
    std::set<std::pair<dev_t, ino_t>> counted;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        struct stat found{};
        lstat(entry.path().c_str(), &found);
        if (S_ISDIR(found.st_mode) || S_ISLNK(found.st_mode)) continue;
        if (counted.insert({found.st_dev, found.st_ino}).second) sum += found.st_blocks * 512;
    }
    return sum;
}

}  // namespace vostrel
