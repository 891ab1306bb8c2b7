#pragma once

#include <map>
#include <string>

namespace vostrel {

/// Names and values of a process's environment.
using Environment = std::map<std::string, std::string>;

/// This process's own, read once at the call. Not while another thread changes it.
[[nodiscard]] Environment processEnvironment();

}  // namespace vostrel
