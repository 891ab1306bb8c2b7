#include <cstdio>
#include <exception>

#include "base/Visit.h"
#include "cli/CommandLine.h"
#include "cli/Interrupt.h"
#include "cli/Program.h"

namespace vostrel::cli {
namespace {

ExitStatus finish(Output& output, const CommandResult& result) {
    if (!result) output.failure(result.error());
    if (!output.finish()) {
        output.notice("The result could not be written.");
        return ExitStatus::failed;
    }
    return result ? ExitStatus::done : result.error().status;
}

ExitStatus run(const Request& request) {
    Interrupt::listen();
    Program program(request.options);
    return finish(program.output, request.command(program));
}

ExitStatus answer(const Answer& answer) {
    std::fputs(answer.text.c_str(), stdout);
    return ExitStatus::done;
}

ExitStatus refuse(const WrongCommandLine& line) {
    Output output(line.json ? Output::Form::json : Output::Form::people);
    return finish(output, wrongCommandLine(line.sentence));
}

}  // namespace
}  // namespace vostrel::cli

int main(int count, char** arguments) {
    using namespace vostrel::cli;
    try {
        return static_cast<int>(vostrel::visit(
            readCommandLine(count, arguments), [](const Request& request) { return run(request); },
            [](const Answer& text) { return answer(text); },
            [](const WrongCommandLine& line) { return refuse(line); }));
    } catch (const std::exception& problem) {  // of memory, above all
        std::fprintf(stderr, "vostrel had to stop: %s\n", problem.what());
        return static_cast<int>(ExitStatus::failed);
    }
}
