#include <cstdlib>

#include "platform/UserAccount.h"

namespace vostrel {

std::filesystem::path temporaryFolder() {
    const char* named = std::getenv("TMPDIR");  // NOLINT(concurrency-mt-unsafe): nothing sets the environment
    if (named != nullptr && named[0] == '/') return named;
    return "/tmp";
}

}  // namespace vostrel
