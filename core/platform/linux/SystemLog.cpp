#include "platform/SystemLog.h"

#include <fmt/format.h>
#include <syslog.h>

#include "base/AppIdentifier.h"

namespace vostrel {

namespace {

/// The log's line has no fields for them, so identifier and category stand in its text. The process's own name and
/// options of the log are the host's to choose.
void writeLine(int priority, std::string_view category, std::string_view message) {
    ::syslog(LOG_USER | priority, "%s", fmt::format("{} [{}] {}", AppIdentifier, category, message).c_str());
}

}  // namespace

void logError(std::string_view category, std::string_view message) {
    writeLine(LOG_ERR, category, message);
}

void logNotice(std::string_view category, std::string_view message) {
    writeLine(LOG_NOTICE, category, message);
}

}  // namespace vostrel
