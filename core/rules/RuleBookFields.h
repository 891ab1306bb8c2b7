#pragma once

#include "rules/RuleBook.h"
#include "rules/RuleFields.h"

namespace vostrel {

/// How the rule book is stored: {"rules": the readable rules in order, then the unreadable ones verbatim; "schedule"},
/// and whatever else its object held.
///
/// One bad rule never fails the book: what cannot be read as a rule, and a rule whose id stands further up already, is
/// kept as it is. Only a value that is no object with a list of rules is no book.
template <>
struct JSONCoder<RuleBook> {
    static JSONValue encode(const RuleBook& book);
    static Decoded<RuleBook> decode(const JSONValue& value);
};

}  // namespace vostrel
