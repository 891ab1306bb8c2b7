#include "platform/CloudState.h"

namespace vostrel {

// No Linux file system keeps its own content in a cloud: what a sync program leaves here is a plain file.
bool isInCloudStorage(const std::filesystem::path&) {
    return false;
}

bool isDataless(const std::filesystem::path&) {
    return false;
}

}  // namespace vostrel
