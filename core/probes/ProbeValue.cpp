#include "probes/ProbeValue.h"

namespace vostrel {

std::string_view shownText(ProbeUnknown reason) {
    switch (reason) {
        case ProbeUnknown::failed:
            return "the system could not be asked";
        case ProbeUnknown::timedOut:
            return "the system did not answer in time";
        case ProbeUnknown::cancelled:
            return "stopped before the system answered";
        case ProbeUnknown::unrecognized:
            return "the system's answer was not understood";
        case ProbeUnknown::unreadable:
            return "the system's record of it could not be read";
        case ProbeUnknown::notChecked:
            return "not checked";
    }
    return {};
}

}  // namespace vostrel
