#include "probes/ProbeCommand.h"

namespace vostrel {

ProbeCommand ProbeCommand::swapUsage() {
    return {.executable = "/usr/sbin/sysctl", .arguments = {"vm.swapusage"}};
}

ProbeCommand ProbeCommand::localSnapshots() {
    return {.executable = "/usr/bin/tmutil", .arguments = {"listlocalsnapshots", "/"}};
}

ProbeCommand ProbeCommand::topMemory() {
    return {.executable = "/usr/bin/top",
            .arguments = {"-l", "1", "-F", "-R", "-o", "mem", "-n", "10", "-stats", "pid,command,mem"}};
}

std::set<ProbeCommand> ProbeCommand::allowed() {
    return {swapUsage(), localSnapshots(), topMemory()};
}

}  // namespace vostrel
