#include <fcntl.h>
#include <signal.h>  // NOLINT(modernize-deprecated-headers): the signals are POSIX, not C++

#include <array>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <tuple>

#include "base/Visit.h"
#include "cli/CommandLine.h"
#include "cli/Interrupt.h"
#include "cli/Program.h"
#include "probes/SystemProcessRunner.h"

namespace vostrel::cli {
namespace {

/// Takes the places of standard input, output and error where they are closed, so that no file ever gets their numbers.
/// Each is opened the wrong way round: using it goes on failing, as if it were closed.
void keepStandardDescriptors() {
    constexpr std::array wrongWay = {O_WRONLY, O_RDONLY, O_RDONLY};
    for (int descriptor = 0; const int mode : wrongWay) {
        if (::fcntl(descriptor, F_GETFD) < 0) std::ignore = ::open("/dev/null", mode);
        ++descriptor;
    }
}

ExitStatus finish(Output& output, const CommandResult& result) {
    if (!result) output.failure(result.error());
    if (const int error = output.finish(); error != 0) {
        // Whoever reads no further knows.
        if (error != EPIPE) output.notice("The result could not be written.");
        return ExitStatus::failed;
    }
    return result ? ExitStatus::done : result.error().status;
}

ExitStatus run(const Request& request) {
    Interrupt::listen();
    Program program(request.options);
    const CommandResult result = request.command(program);
    SystemProcessRunner::killAll();
    return finish(program.output, result);
}

ExitStatus answer(const Answer& answer) {
    Output output(Output::Form::people);
    output.plain(answer.text);
    return finish(output, {});
}

ExitStatus refuse(const WrongCommandLine& line) {
    Output output(line.json ? Output::Form::json : Output::Form::people);
    return finish(output, wrongCommandLine(line.sentence));
}

}  // namespace
}  // namespace vostrel::cli

int main(int count, char** arguments) {
    using namespace vostrel::cli;
    keepStandardDescriptors();
    // A file that grows past the limit, or a pipe that nobody reads, is then a failure of the write: the first has a
    // sentence, and after the second a command still clears away what it made for itself.
    ::signal(SIGXFSZ, SIG_IGN);
    ::signal(SIGPIPE, SIG_IGN);
    // Whoever started the program may have it ignored: then nobody would hear how a child ended.
    ::signal(SIGCHLD, SIG_DFL);
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
