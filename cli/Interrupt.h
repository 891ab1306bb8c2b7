#pragma once

namespace vostrel::cli {

/// Lets Ctrl-C (and SIGTERM) stop work through the library's own cancellation: the first one only raises a flag, which
/// the work polls; the second ends the program at once.
class Interrupt {
public:
    static void listen();
    [[nodiscard]] static bool requested();
};

}  // namespace vostrel::cli
