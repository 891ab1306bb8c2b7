#include "platform/ProcessEnvironment.h"

#include <string_view>

extern "C" char** environ;

namespace vostrel {

Environment processEnvironment() {
    Environment variables;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string_view text(*entry);
        const auto equals = text.find('=');
        if (equals == std::string_view::npos) continue;
        variables.emplace(text.substr(0, equals), text.substr(equals + 1));
    }
    return variables;
}

}  // namespace vostrel
