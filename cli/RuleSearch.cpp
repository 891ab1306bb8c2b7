#include "cli/RuleSearch.h"

#include <fmt/format.h>

#include <vector>

#include "base/UnicodeText.h"

namespace vostrel::cli {

namespace {

std::vector<const Rule*> rulesNamed(const RuleBook& book, std::string_view wanted) {
    std::vector<const Rule*> found;
    for (const Rule& rule : book.rules) {
        if (rule.name == wanted) found.push_back(&rule);
    }
    return found;
}

std::vector<const Rule*> candidates(const RuleBook& book, std::string_view wanted) {
    std::vector<const Rule*> found;
    const std::string key = folded(wanted);
    for (const Rule& rule : book.rules) {
        const bool byID = !key.empty() && folded(rule.id.text()).starts_with(key);
        if (byID || folded(rule.name) == key) found.push_back(&rule);
    }
    return found;
}

std::unexpected<Failure> ambiguous(std::string_view wanted, const std::vector<const Rule*>& found) {
    Failure failure{.sentences = {fmt::format("\"{}\" could be any of these rules; name one by its id:", wanted)}};
    for (const Rule* rule : found)
        failure.sentences.push_back(fmt::format("  {}  {}", rule->id.text(), rule->name));
    return std::unexpected(std::move(failure));
}

}  // namespace

std::expected<const Rule*, Failure> findRule(const RuleBook& book, std::string_view wanted) {
    if (const auto id = Uuid::parse(wanted)) {
        if (const Rule* rule = book.rule(*id)) return rule;
    }
    if (const auto named = rulesNamed(book, wanted); named.size() == 1) return named.front();
    const auto found = candidates(book, wanted);
    if (found.empty()) return failed(fmt::format("There is no rule \"{}\".", wanted));
    if (found.size() > 1) return ambiguous(wanted, found);
    return found.front();
}

}  // namespace vostrel::cli
