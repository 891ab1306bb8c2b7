#include "rules/RuleBookFields.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

namespace vostrel {

namespace {

constexpr const char* rulesKey = "rules";
constexpr const char* scheduleKey = "schedule";

void readRules(const JSONArray& values, RuleBook& book) {
    std::set<Uuid> known;  // asking the book about each id would cost the square of their number
    for (const JSONValue& value : values) {
        auto rule = decodeJSON<Rule>(value);
        if (rule && known.insert(rule->id).second) {
            book.rules.push_back(std::move(*rule));
        } else {
            book.unreadableRules.push_back(value);
        }
    }
}

}  // namespace

JSONValue JSONCoder<RuleBook>::encode(const RuleBook& book) {
    JSONArray rules;
    std::ranges::transform(book.rules, std::back_inserter(rules), encodeJSON<Rule>);
    std::ranges::copy(book.unreadableRules, std::back_inserter(rules));
    std::vector<JSONMember> members = book.unknownMembers;
    members.emplace_back(rulesKey, std::move(rules));
    members.emplace_back(scheduleKey, encodeJSON(book.schedule));
    return JSONObject(std::move(members));
}

Decoded<RuleBook> JSONCoder<RuleBook>::decode(const JSONValue& value) {
    const auto object = json::objectIn(value);
    if (!object) return std::unexpected(object.error());
    const JSONValue* found = (*object)->find(rulesKey);
    const auto* rules = found != nullptr ? found->as<JSONArray>() : nullptr;
    if (rules == nullptr) return jsonFault("A rule book has a list of rules.");

    RuleBook book;
    readRules(*rules, book);
    for (const auto& [key, member] : (*object)->members()) {
        if (key == scheduleKey) {
            book.schedule = decodeJSON<ScheduleState>(member).value_or(ScheduleState());
        } else if (key != rulesKey) {
            book.unknownMembers.emplace_back(key, member);
        }
    }
    return book;
}

}  // namespace vostrel
