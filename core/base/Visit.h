#pragma once

#include <utility>
#include <variant>

namespace vostrel {

template <class... Handlers>
struct Overloaded : Handlers... {
    using Handlers::operator()...;
};

/// Takes a variant apart: `visit(target, [](const FolderTarget&) {…}, [](const PresetTarget&) {…})`.
template <class Variant, class... Handlers>
decltype(auto) visit(Variant&& value, Handlers&&... handlers) {
    return std::visit(Overloaded<std::decay_t<Handlers>...>{std::forward<Handlers>(handlers)...},
                      std::forward<Variant>(value));
}

}  // namespace vostrel
