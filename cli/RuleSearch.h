#pragma once

#include <expected>
#include <string_view>

#include "cli/CommandResult.h"
#include "rules/RuleBook.h"

namespace vostrel::cli {

/// The rule that the user means: by its id, by its very name, by a beginning of the id that no other has, or by its
/// name in any case. Fails when there is none, and when it could be one of several.
[[nodiscard]] std::expected<const Rule*, Failure> findRule(const RuleBook& book, std::string_view wanted);

}  // namespace vostrel::cli
