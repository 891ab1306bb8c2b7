#pragma once

#include <array>

#include "base/PrintableText.h"
#include "base/UnicodeText.h"
#include "cleaning/DetailLine.h"
#include "cleaning/RunReport.h"
#include "rules/RuleFields.h"
#include "stores/JSONCoder.h"
#include "stores/JSONRecord.h"

namespace vostrel {

/// How runs are logged.
///
/// Text must never keep a record from being written: names and sentences may quote a path that is no UTF-8, and are
/// stored in the printable form then.

/// The format's version, which each line carries.
inline constexpr JSONField runFormatVersion{
    "version", JSONReading::lenient, [](const void*) -> std::optional<JSONValue> { return JSONValue(1); },
    [](const JSONValue&, void*) -> std::expected<void, JSONError> { return {}; }};

inline JSONValue storableText(const std::string& text) {
    return isValidUTF8(text) ? text : printable(text);
}

inline JSONValue storableText(const std::vector<std::string>& texts) {
    JSONArray list;
    for (const std::string& text : texts)
        list.push_back(storableText(text));
    return list;
}

/// A field of text, or of a list of texts.
template <auto member, JSONReading reading>
constexpr JSONField textField(std::string_view key) {
    using Types = json::MemberOf<decltype(member)>;
    const auto encode = [](const void* record) -> std::optional<JSONValue> {
        const auto& text = static_cast<const typename Types::RecordType*>(record)->*member;
        if constexpr (json::isOptional<typename Types::MemberType>) {
            return text ? std::optional(storableText(*text)) : std::nullopt;
        } else {
            return storableText(text);
        }
    };
    return {key, reading, encode, &json::decodeMember<member, reading>};
}

template <>
struct JSONNames<RunTrigger> {
    static constexpr std::array list{
        JSONName{RunTrigger::manual, "manual"},     JSONName{RunTrigger::cleanNow, "cleanNow"},
        JSONName{RunTrigger::schedule, "schedule"}, JSONName{RunTrigger::belowLine, "belowLine"},
        JSONName{RunTrigger::appQuit, "appQuit"},   JSONName{RunTrigger::unknown, "unknown"},
    };
    static constexpr RunTrigger unknown = RunTrigger::unknown;
};

template <>
struct JSONNames<RunStatus> {
    static constexpr std::array list{
        JSONName{RunStatus::started, "started"},
        JSONName{RunStatus::finished, "finished"},
        JSONName{RunStatus::stopped, "stopped"},
        JSONName{RunStatus::skipped, "skipped"},
    };
};

template <>
struct JSONNames<RunSkipReason> {
    static constexpr std::array list{
        JSONName{RunSkipReason::disabled, "disabled"},
        JSONName{RunSkipReason::paused, "paused"},
        JSONName{RunSkipReason::notApproved, "notApproved"},
        JSONName{RunSkipReason::appRunning, "appRunning"},
        JSONName{RunSkipReason::rootProblem, "rootProblem"},
        JSONName{RunSkipReason::nothingToClean, "nothingToClean"},
        JSONName{RunSkipReason::anotherRunActive, "anotherRunActive"},
        JSONName{RunSkipReason::lockUnavailable, "lockUnavailable"},
        JSONName{RunSkipReason::logUnavailable, "logUnavailable"},
        JSONName{RunSkipReason::previewOutdated, "previewOutdated"},
        JSONName{RunSkipReason::previewExpired, "previewExpired"},
        JSONName{RunSkipReason::stopped, "stopped"},
        JSONName{RunSkipReason::unknown, "unknown"},
    };
    static constexpr RunSkipReason unknown = RunSkipReason::unknown;
};

template <>
struct JSONNames<ItemOutcome::Status> {
    static constexpr std::array list{
        JSONName{ItemOutcome::Status::trashed, "trashed"},
        JSONName{ItemOutcome::Status::deleted, "deleted"},
        JSONName{ItemOutcome::Status::partlyDeleted, "partlyDeleted"},
        JSONName{ItemOutcome::Status::changed, "changed"},
        JSONName{ItemOutcome::Status::refused, "refused"},
        JSONName{ItemOutcome::Status::failed, "failed"},
        JSONName{ItemOutcome::Status::notAttempted, "notAttempted"},
        JSONName{ItemOutcome::Status::unknown, "unknown"},
    };
    static constexpr ItemOutcome::Status unknown = ItemOutcome::Status::unknown;
};

template <>
struct JSONFields<ItemOutcome> {
    static constexpr std::array list{
        jsonField<&ItemOutcome::path>("path"),
        jsonField<&ItemOutcome::bytes>("bytes"),
        jsonField<&ItemOutcome::status>("status"),
        textField<&ItemOutcome::message, JSONReading::lenient>("message"),
        jsonField<&ItemOutcome::removedFiles, JSONReading::lenient>("removedFiles"),
        jsonField<&ItemOutcome::trashPath, JSONReading::lenient>("trashPath"),
    };
};

template <>
struct JSONFields<RunReport> {
    static constexpr std::array list{
        runFormatVersion,
        jsonField<&RunReport::id>("id"),
        jsonField<&RunReport::ruleID>("ruleID"),
        textField<&RunReport::ruleName, JSONReading::required>("ruleName"),
        jsonField<&RunReport::trigger>("trigger"),
        jsonField<&RunReport::action>("action"),
        jsonField<&RunReport::status>("status"),
        jsonField<&RunReport::skipReason, JSONReading::lenient>("skipReason"),
        jsonField<&RunReport::startedAt>("startedAt"),
        jsonField<&RunReport::finishedAt, JSONReading::lenient>("finishedAt"),
        jsonField<&RunReport::rootPath, JSONReading::lenient>("rootPath"),
        jsonField<&RunReport::rootPaths, JSONReading::eachReadable>("rootPaths"),
        jsonField<&RunReport::plannedItems>("plannedItems"),
        jsonField<&RunReport::plannedBytes>("plannedBytes"),
        jsonField<&RunReport::plannedPaths, JSONReading::eachReadable>("plannedPaths"),
        jsonField<&RunReport::plannedPathsOmitted, JSONReading::defaulted>("plannedPathsOmitted"),
        jsonField<&RunReport::plannedPathsNotLogged, JSONReading::defaulted>("plannedPathsNotLogged"),
        jsonField<&RunReport::freedBytes, JSONReading::lenient>("freedBytes"),
        jsonField<&RunReport::deletedBytes>("deletedBytes"),
        jsonField<&RunReport::movedToTrashBytes>("movedToTrashBytes"),
        jsonField<&RunReport::itemsCleaned>("itemsCleaned"),
        jsonField<&RunReport::itemsPartlyDeleted>("itemsPartlyDeleted"),
        jsonField<&RunReport::itemsFailed>("itemsFailed"),
        jsonField<&RunReport::itemsLeftAlone>("itemsLeftAlone"),
        jsonField<&RunReport::itemsNotAttempted>("itemsNotAttempted"),
        jsonField<&RunReport::outcomes, JSONReading::eachReadable>("outcomes"),
        jsonField<&RunReport::outcomesOmitted, JSONReading::defaulted>("outcomesOmitted"),
        jsonField<&RunReport::outcomesNotLogged, JSONReading::defaulted>("outcomesNotLogged"),
        textField<&RunReport::messages, JSONReading::eachReadable>("messages"),
    };
    /// A record that counts below zero is unreadable.
    static std::optional<std::string> settle(RunReport& report);
};

template <>
struct JSONFields<DetailLine> {
    static constexpr std::array list{
        runFormatVersion,
        jsonField<&DetailLine::id>("id"),
        jsonField<&DetailLine::plannedPaths, JSONReading::eachReadable>("plannedPaths"),
        jsonField<&DetailLine::outcomes, JSONReading::eachReadable>("outcomes"),
    };
};

template <>
struct JSONFields<RunID> {
    static constexpr std::array list{jsonField<&RunID::id>("id")};
};

}  // namespace vostrel
