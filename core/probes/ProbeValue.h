#pragma once

#include <optional>
#include <string_view>
#include <utility>
#include <variant>

namespace vostrel {

/// Why the system gave no answer. Stored by case name.
enum class ProbeUnknown {
    failed,
    timedOut,
    cancelled,
    /// The answer could not be understood.
    unrecognized,
    /// A file could not be read.
    unreadable,
    notChecked,
};

/// The short text shown for it: "the system did not answer in time".
[[nodiscard]] std::string_view shownText(ProbeUnknown reason);

/// What the system answered, or why that is unknown.
template <class Value>
class ProbeValue {
public:
    ProbeValue() = default;
    ProbeValue(ProbeUnknown reason) : content(reason) {}
    ProbeValue(Value known) : content(std::move(known)) {}

    [[nodiscard]] std::optional<Value> value() const {
        const auto* known = std::get_if<Value>(&content);
        return known == nullptr ? std::nullopt : std::optional(*known);
    }
    /// Nothing when the value is known.
    [[nodiscard]] std::optional<ProbeUnknown> unknown() const {
        const auto* reason = std::get_if<ProbeUnknown>(&content);
        return reason == nullptr ? std::nullopt : std::optional(*reason);
    }

    friend bool operator==(const ProbeValue&, const ProbeValue&) = default;

private:
    std::variant<ProbeUnknown, Value> content = ProbeUnknown::notChecked;
};

}  // namespace vostrel
