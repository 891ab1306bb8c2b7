#pragma once

#include <expected>
#include <filesystem>
#include <functional>
#include <optional>

#include "base/Date.h"
#include "cli/CommandResult.h"
#include "cli/Output.h"
#include "rules/RuleBook.h"
#include "rules/RuleStore.h"

namespace vostrel::cli {

/// The rule book in the data folder, which other programs may be using at the same time.
///
/// A damaged file is moved aside, which is said once, and the book is empty then. One that could not even be moved is
/// a failure, as is one that the system had no means to read, and nothing is ever saved over either.
class StoredRules {
public:
    StoredRules(std::filesystem::path data, Clock present, Output& messages);

    [[nodiscard]] std::expected<RuleBook, Failure> load() const;

    /// The book as it lies there, for work that goes on meanwhile: waits for nobody, and leaves a damaged file, which
    /// is an empty book, to the next program. Nothing when the system had no means to read it.
    [[nodiscard]] std::optional<RuleBook> asItIs() const;

    /// Loads the book, lets `change` work on it and saves it, all of it while no other program can. Nothing is saved
    /// when `change` fails.
    [[nodiscard]] CommandResult change(const std::function<CommandResult(RuleBook&)>& change) const;

private:
    [[nodiscard]] std::expected<RuleBook, Failure> loaded(DamagedFile damaged) const;

    std::filesystem::path folder;
    Clock clock;
    Output& output;
    RuleStore store;
};

}  // namespace vostrel::cli
