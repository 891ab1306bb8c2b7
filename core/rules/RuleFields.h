#pragma once

#include <array>

#include "base/UnicodeText.h"
#include "filesystem/AgeBasis.h"
#include "filesystem/FilesystemFields.h"
#include "rules/ApprovalKey.h"
#include "rules/ArtifactKind.h"
#include "rules/CleanupAction.h"
#include "rules/PathSource.h"
#include "rules/Rule.h"
#include "rules/RuleFilter.h"
#include "rules/RuleScope.h"
#include "rules/RuleTarget.h"
#include "rules/RuleTrigger.h"
#include "rules/ScheduleState.h"
#include "stores/JSONCoder.h"
#include "stores/JSONRecord.h"

namespace vostrel {

/// How rules and their parts are stored.
///
/// No word and no key of a rule may be passed over: a limit that this version does not know, left out, would let a rule
/// remove more than it was made for. So the records here refuse keys that they do not list, which makes the rule
/// unreadable; an unreadable rule never runs and stays in its file as it is.

/// Left out where there is nothing in it.
template <auto member>
std::optional<JSONValue> encodeUnlessEmpty(const void* record) {
    using Record = typename json::MemberOf<decltype(member)>::RecordType;
    const auto& value = static_cast<const Record*>(record)->*member;
    return value.empty() ? std::nullopt : std::optional(encodeJSON(value));
}

/// A field that only some of the records have, and that is never there but empty.
template <auto member>
constexpr JSONField fieldUnlessEmpty(std::string_view key) {
    return {key, JSONReading::defaulted, &encodeUnlessEmpty<member>,
            &json::decodeMember<member, JSONReading::defaulted>};
}

template <>
struct JSONNames<CleanupAction> {
    static constexpr std::array list{
        JSONName{CleanupAction::trash, "trash"},
        JSONName{CleanupAction::deletePermanently, "delete"},
    };
};

template <>
struct JSONNames<AgeBasis> {
    static constexpr std::array list{
        JSONName{AgeBasis::modified, "modified"},
        JSONName{AgeBasis::added, "added"},
        JSONName{AgeBasis::lastOpened, "lastOpened"},
    };
};

template <>
struct JSONNames<RuleScope> {
    static constexpr std::array list{
        JSONName{RuleScope::topLevelItems, "topLevelItems"},
        JSONName{RuleScope::allFiles, "allFiles"},
        JSONName{RuleScope::topLevelFiles, "topLevelFiles"},
    };
};

template <>
struct JSONNames<ArtifactKind> {
    static constexpr auto list = [] {
        std::array<JSONName<ArtifactKind>, artifactKinds.size()> names{};
        for (std::size_t place = 0; place < names.size(); ++place)
            names[place] = {artifactKinds[place].kind, artifactKinds[place].storedName};
        return names;
    }();
};

template <>
struct JSONFields<FolderTarget> {
    static constexpr std::array list{jsonField<&FolderTarget::path>("path")};
};

template <>
struct JSONFields<PresetTarget> {
    static constexpr std::array list{jsonField<&PresetTarget::id>("id")};
};

template <>
struct JSONFields<ProjectScanTarget> {
    static constexpr std::array list{
        jsonField<&ProjectScanTarget::roots>("roots"),
        jsonField<&ProjectScanTarget::kinds>("kinds"),
        jsonField<&ProjectScanTarget::untouchedDays>("untouchedDays"),
    };
};

template <>
struct JSONCases<RuleTarget> {
    static constexpr auto names = std::to_array<std::string_view>({"folder", "preset", "projectScan"});
    static constexpr bool refusesOtherKeys = true;
};

template <>
struct JSONFields<HomeSource> {
    static constexpr std::array list{jsonField<&HomeSource::path>("path")};
};

template <>
struct JSONFields<UserTempSource> {
    static constexpr std::array list{jsonField<&UserTempSource::prefix>("prefix")};
};

template <>
struct JSONCases<PathSource> {
    static constexpr auto names =
        std::to_array<std::string_view>({"home", "userTemp", "xcodeDerivedData", "screenshotFolder", "homeTrash"});
};

template <>
struct JSONFields<PinnedFile> {
    static constexpr std::array list{
        jsonField<&PinnedFile::name>("name"),
        jsonField<&PinnedFile::volumeUUID>("volumeUUID"),
        jsonField<&PinnedFile::inode>("inode"),
    };
    static constexpr bool refusesOtherKeys = true;
    static std::optional<std::string> settle(PinnedFile& pin);
};

template <>
struct JSONFields<RuleFilter> {
    /// There but empty, the list may have lost its files, and the rule is unreadable.
    static std::expected<void, JSONError> decodePins(const JSONValue& value, void* filter);

    static constexpr std::array list{
        jsonField<&RuleFilter::minAgeDays>("minAgeDays"),
        jsonField<&RuleFilter::ageBasis, JSONReading::defaulted>("ageBasis"),
        jsonField<&RuleFilter::minSizeBytes>("minSizeBytes"),
        jsonField<&RuleFilter::includeGlobs, JSONReading::defaulted>("includeGlobs"),
        jsonField<&RuleFilter::excludeGlobs, JSONReading::defaulted>("excludeGlobs"),
        jsonField<&RuleFilter::scope, JSONReading::defaulted>("scope"),
        JSONField{"pinnedFiles", JSONReading::defaulted, &encodeUnlessEmpty<&RuleFilter::pinnedFiles>, &decodePins},
    };
    static constexpr bool refusesOtherKeys = true;
    static std::optional<std::string> settle(RuleFilter& filter);
};

template <>
struct JSONFields<DailyTrigger> {
    static constexpr std::array list{
        jsonField<&DailyTrigger::hour>("hour"),
        jsonField<&DailyTrigger::minute>("minute"),
    };
};

template <>
struct JSONFields<WeeklyTrigger> {
    static constexpr std::array list{
        jsonField<&WeeklyTrigger::weekday>("weekday"),
        jsonField<&WeeklyTrigger::hour>("hour"),
        jsonField<&WeeklyTrigger::minute>("minute"),
    };
};

template <>
struct JSONFields<WhenAppQuitsTrigger> {
    static constexpr std::array list{jsonField<&WhenAppQuitsTrigger::bundleID>("bundleID")};
};

template <>
struct JSONCases<RuleTrigger> {
    static constexpr auto names =
        std::to_array<std::string_view>({"daily", "weekly", "whenAppQuits", "endOfDay", "belowLine", "manual"});
    static constexpr bool refusesOtherKeys = true;
};

template <>
struct JSONFields<ApprovalKey> {
    static constexpr std::array list{
        jsonField<&ApprovalKey::target>("target"),
        jsonField<&ApprovalKey::filter>("filter"),
        jsonField<&ApprovalKey::action>("action"),
        jsonField<&ApprovalKey::unattendedTriggers>("unattendedTriggers"),
        jsonField<&ApprovalKey::pauseWhileRunning>("pauseWhileRunning"),
        fieldUnlessEmpty<&ApprovalKey::roots>("roots"),
        fieldUnlessEmpty<&ApprovalKey::definition>("definition"),
        jsonField<&ApprovalKey::rootFileID>("rootFileID"),
    };
    static constexpr bool refusesOtherKeys = true;
    static std::optional<std::string> settle(ApprovalKey& key);
};

template <>
struct JSONFields<Rule> {
    static constexpr std::array list{
        jsonField<&Rule::id>("id"),
        jsonField<&Rule::name>("name"),
        jsonField<&Rule::enabled>("enabled"),
        jsonField<&Rule::target>("target"),
        jsonField<&Rule::filter, JSONReading::defaulted>("filter"),
        jsonField<&Rule::action>("action"),
        jsonField<&Rule::triggers, JSONReading::lenient>("triggers"),
        jsonField<&Rule::pauseWhileRunning, JSONReading::defaulted>("pauseWhileRunning"),
        jsonField<&Rule::approval, JSONReading::lenient>("approval"),
        jsonField<&Rule::createdAt>("createdAt"),
    };
    static constexpr bool refusesOtherKeys = true;
    static std::optional<std::string> settle(Rule& rule);
};

template <>
struct JSONFields<ScheduleState> {
    static constexpr std::array list{
        jsonField<&ScheduleState::lastRun, JSONReading::eachReadable>("lastRun"),
        jsonField<&ScheduleState::lastThresholdSession, JSONReading::lenient>("lastThresholdSession"),
        jsonField<&ScheduleState::thresholdLatchedAt, JSONReading::lenient>("thresholdLatchedAt"),
    };
};

}  // namespace vostrel
