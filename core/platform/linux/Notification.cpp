#include "platform/Notification.h"

#include <chrono>

#include "platform/ProgramRun.h"

namespace vostrel {

namespace {

// The service answers at once, or is not there.
constexpr std::chrono::seconds longestWait{5};

/// Desktops read bodies as markup.
std::string withoutMarkup(const std::string& text) {
    std::string plain;
    for (const char letter : text) {
        if (letter == '&') {
            plain += "&amp;";
        } else if (letter == '<') {
            plain += "&lt;";
        } else {
            plain += letter;
        }
    }
    return plain;
}

}  // namespace

bool showNotification(const std::string& title, const std::string& body) {
    return runProgram({"notify-send", "--app-name=Vostrel", "--", title, withoutMarkup(body)}, longestWait) == 0;
}

}  // namespace vostrel
