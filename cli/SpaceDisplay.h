#pragma once

#include "cli/Output.h"
#include "monitor/AppSettings.h"
#include "monitor/SpaceMonitor.h"

namespace vostrel::cli {

/// The reading as a table, with a sentence for each alert level that free space is below.
void showReading(Output& output, const MonitorReading& reading, const AppSettings& settings);

[[nodiscard]] JSONValue documentOf(const MonitorReading& reading);

}  // namespace vostrel::cli
