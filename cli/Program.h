#pragma once

#include "cli/CommandLine.h"
#include "cli/Output.h"

namespace vostrel::cli {

/// One run of the program: what was asked of every command, and where results go.
class Program {
public:
    explicit Program(GlobalOptions asked)
        : options(std::move(asked)), output(options.json ? Output::Form::json : Output::Form::people) {}

    const GlobalOptions options;
    Output output;
};

}  // namespace vostrel::cli
