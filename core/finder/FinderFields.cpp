#include "finder/FinderFields.h"

#include <array>
#include <utility>
#include <vector>

#include "base/Visit.h"
#include "filesystem/FilesystemFields.h"
#include "stores/JSONCoder.h"
#include "stores/JSONRecord.h"

namespace vostrel {

template <>
struct JSONNames<FinderResult::Ending> {
    static constexpr std::array list{
        JSONName{FinderResult::Ending::complete, "complete"},
        JSONName{FinderResult::Ending::cancelled, "cancelled"},
        JSONName{FinderResult::Ending::deadline, "deadline"},
    };
};

template <>
struct JSONNames<LastOpened::Source> {
    static constexpr std::array list{
        JSONName{LastOpened::Source::spotlight, "spotlight"},
        JSONName{LastOpened::Source::modifiedOrAdded, "modifiedOrAdded"},
    };
};

namespace {

JSONValue pathOf(const FinderPath& path) {
    return encodeJSON(path.full());
}

template <class Value, class Encode>
JSONArray listOf(const std::vector<Value>& values, const Encode& encode) {
    JSONArray list;
    for (const Value& value : values)
        list.push_back(encode(value));
    return list;
}

JSONValue encoded(const FinderFile& file) {
    std::vector<JSONMember> fields{
        {"path", pathOf(file.path)}, {"bytes", file.stamp.allocated}, {"size", file.stamp.size}};
    if (file.lastOpened) {
        fields.emplace_back("lastOpened", encodeJSON(file.lastOpened->date));
        fields.emplace_back("lastOpenedSource", encodeJSON(file.lastOpened->source));
    }
    if (file.trashBlock) fields.emplace_back("trashBlock", *file.trashBlock);
    return JSONObject(std::move(fields));
}

JSONValue encoded(const DuplicateGroup& group) {
    return JSONObject{{"digest", group.digest},
                      {"size", group.size},
                      {"copies", listOf(group.copies, [](const DuplicateCopy& copy) { return pathOf(copy.path); })}};
}

JSONValue encoded(const FinderRootProblem& problem) {
    using Kind = FinderRootProblem::Kind;
    switch (problem.kind) {
        case Kind::link:
            return "link";
        case Kind::missing:
            return "missing";
        case Kind::notAFolder:
            return "notAFolder";
        case Kind::unreadable:
            break;
    }
    return JSONObject{{"unreadable", encodeJSON(problem.reason.value_or(UnreadableReason::unknown))}};
}

JSONValue encoded(const FinderRootState& root) {
    const auto path = [](const std::string& text) { return encodeJSON(std::filesystem::path(text)); };
    return visit(
        root,
        [&](const FinderRootInfo& info) -> JSONValue {
            return JSONObject{{"given", path(info.given)}, {"path", path(info.path)}};
        },
        [&](const FinderUnsearchedRoot& unsearched) -> JSONValue {
            return JSONObject{{"given", path(unsearched.given)}, {"problem", encoded(unsearched.problem)}};
        });
}

JSONValue encoded(const FinderCandidates& walk) {
    const auto paths = [](const std::string& text) { return encodeJSON(std::filesystem::path(text)); };
    return JSONObject{{"filesSeen", walk.filesSeen},
                      {"foldersRead", walk.foldersRead},
                      {"linksNotFollowed", walk.linksNotFollowed},
                      {"unreadable", walk.unreadable},
                      {"notMeasured", walk.notMeasured},
                      {"oldOverflow", walk.oldOverflow},
                      {"poolOverflow", walk.poolOverflow},
                      {"packagesSkipped", walk.packagesSkipped},
                      {"repositoriesSkipped", walk.repositoriesSkipped},
                      {"cloudOnlyFiles", walk.cloudOnlyFiles},
                      {"leftOut", listOf(walk.leftOut, paths)},
                      {"leftOutLibraries", walk.leftOutLibraries},
                      {"needsFullDiskAccess", listOf(walk.needsFullDiskAccess, paths)},
                      {"needsFullDiskAccessCount", walk.needsFullDiskAccessCount},
                      {"stopped", walk.stopped}};
}

JSONValue encoded(const DuplicateOutcome& duplicates) {
    return JSONObject{{"finished", duplicates.finished},
                      {"sharedSpaceFiles", duplicates.sharedSpaceFiles},
                      {"inICloud", duplicates.inICloud},
                      {"couldNotCheckICloud", duplicates.couldNotCheckICloud},
                      {"changedOrUnreadable", duplicates.changedOrUnreadable}};
}

constexpr auto encodedEach = [](const auto& value) { return encoded(value); };

}  // namespace

JSONValue documentOf(const FinderResult& result) {
    return JSONObject{{"roots", listOf(result.walk.roots, encodedEach)},
                      {"ending", encodeJSON(result.ending)},
                      {"duration", result.duration},
                      {"large", listOf(result.large, encodedEach)},
                      {"largeCount", result.walk.largeCount},
                      {"largeBytes", result.walk.largeBytes},
                      {"old", listOf(result.old, encodedEach)},
                      {"oldNotChecked", result.oldNotChecked},
                      {"groups", listOf(result.groups, encodedEach)},
                      {"duplicates", encoded(result.duplicates)},
                      {"walk", encoded(result.walk)}};
}

}  // namespace vostrel
