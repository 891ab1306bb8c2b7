#pragma once

namespace vostrel::cli {

/// Lets Ctrl-C (and SIGTERM) stop work through the library's own cancellation: the first one only raises a flag, which
/// the work polls; the second ends the program at once. So does a terminal that goes away, however often it says so.
class Interrupt {
public:
    /// What is said of work that was stopped.
    static constexpr const char* sentence = "Stopped before it finished.";

    static void listen();
    [[nodiscard]] static bool requested();
    /// Whoever sleeps until something happens polls this descriptor too: it is readable once a stop was asked for.
    [[nodiscard]] static int descriptor();
};

}  // namespace vostrel::cli
