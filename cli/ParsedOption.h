#pragma once

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <string>
#include <utility>
#include <vector>

namespace vostrel::cli {

/// An option whose text is read by `parse` and given to `take`; what cannot be read is an error that names it.
template <class Parse, class Take>
CLI::Option* addParsed(CLI::App& command, const std::string& name, const std::string& type, Parse parse,
                       const Take& take, const std::string& description) {
    const auto read = [name, parse, take](const std::vector<std::string>& texts) {
        for (const std::string& text : texts) {
            auto value = parse(text);
            if (!value) throw CLI::ValidationError(name, fmt::format("{}, not \"{}\"", value.error(), text));
            take(std::move(*value));
        }
    };
    return command.add_option_function<std::vector<std::string>>(name, read, description)
        ->type_name(type)
        ->expected(1)
        ->allow_extra_args(false);
}

/// Lets an option take several values, up to the next option.
inline CLI::Option* takesMany(CLI::Option* option) {
    // From some number on the parser would split an argument like "[a-c]" at its commas.
    constexpr int manyValues = 1'000'000;
    return option->expected(1, manyValues)->allow_extra_args(false);
}

}  // namespace vostrel::cli
