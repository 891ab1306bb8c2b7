#pragma once

#include <expected>
#include <filesystem>

#include "rules/RuleBook.h"
#include "stores/CodableFileStore.h"

namespace vostrel {

/// Keeps the rule book in "rules.json", indented for people. A missing file is an empty book; a file that cannot be
/// used as a whole is moved aside (see `CodableFileStore`).
class RuleStore {
public:
    explicit RuleStore(std::filesystem::path directory);

    [[nodiscard]] std::filesystem::path fileURL() const { return store.fileURL(); }
    [[nodiscard]] FileLoadResult<RuleBook> load(Date now, DamagedFile damaged = DamagedFile::movesAside) const;
    void removeLeftovers() const { store.removeLeftovers(); }
    [[nodiscard]] std::expected<void, StoreError> save(const RuleBook& book) const;

private:
    CodableFileStore<RuleBook> store;
};

}  // namespace vostrel
