#include "platform/SystemKind.h"

namespace vostrel {

SystemKind systemKind() {
    return SystemKind::linux;
}

}  // namespace vostrel
