#include "cli/Agreement.h"

#include <fmt/format.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <iostream>

#include "cli/Interrupt.h"

namespace vostrel::cli {

namespace {

/// A line from the terminal; nothing when Ctrl-C comes first.
std::string answerOfTheUser() {
    std::array waited{pollfd{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0},
                      pollfd{.fd = Interrupt::descriptor(), .events = POLLIN, .revents = 0}};
    while (::poll(waited.data(), waited.size(), -1) < 0 && errno == EINTR && !Interrupt::requested()) {
    }
    std::string answer;
    if (!Interrupt::requested()) std::getline(std::cin, answer);
    return answer;
}

}  // namespace

CommandResult agree(Session& session, Consent consent, const std::string& question) {
    if (consent == Consent::given) return {};
    const bool canAsk = session.output.isForPeople() && ::isatty(STDIN_FILENO) == 1 && ::isatty(STDOUT_FILENO) == 1;
    if (!canAsk)
        return failed("Nothing was removed: there is no terminal to ask on. Say --yes to do it without asking.");
    session.output.line({{question + " [y/N] ", Output::Style::bold}});
    if (session.output.finish() != 0) return failed("Nothing was removed, for the preview could not be shown.");
    const std::string answer = answerOfTheUser();
    if (answer == "y" || answer == "Y" || answer == "yes") return {};
    return failed("Nothing was removed.");
}

std::string questionFor(CleanupAction action, std::int64_t items) {
    const std::string what = counted(items, "item", "items");
    return action == CleanupAction::trash ? fmt::format("Move {} to the Trash?", what)
                                          : fmt::format("Delete {} for good?", what);
}

}  // namespace vostrel::cli
