#include "rules/RuleStore.h"

#include <utility>

#include "rules/RuleBookFields.h"

namespace vostrel {

RuleStore::RuleStore(std::filesystem::path directory)
    : store(std::move(directory), "rules.json", JSONLayout::pretty, std::nullopt, [] { return RuleBook(); }) {}

FileLoadResult<RuleBook> RuleStore::load(Date now, DamagedFile damaged) const {
    return store.load(now, damaged);
}

std::expected<void, StoreError> RuleStore::save(const RuleBook& book) const {
    return store.save(book);
}

}  // namespace vostrel
