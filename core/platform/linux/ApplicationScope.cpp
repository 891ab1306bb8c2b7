#include "platform/linux/ApplicationScope.h"

#include <charconv>

namespace vostrel::linux_platform {

namespace {

/// Undoes the escapes of unit names: "org.gnome\x2dterminal".
std::string unescaped(std::string_view text) {
    std::string plain;
    while (!text.empty()) {
        unsigned char letter = 0;
        const bool isEscape = text.size() >= 4 && text.starts_with("\\x") &&
                              std::from_chars(text.data() + 2, text.data() + 4, letter, 16).ptr == text.data() + 4;
        plain += isEscape ? static_cast<char>(letter) : text.front();
        text.remove_prefix(isEscape ? 4 : 1);
    }
    return plain;
}

std::optional<std::string> applicationOfUnit(std::string_view unit) {
    constexpr std::string_view prefix = "app-";
    constexpr std::string_view scope = ".scope";
    constexpr std::string_view service = ".service";
    if (!unit.starts_with(prefix)) return std::nullopt;
    unit.remove_prefix(prefix.size());
    if (unit.ends_with(scope)) {
        unit.remove_suffix(scope.size());
        const auto random = unit.rfind('-');
        if (random == std::string_view::npos) return std::nullopt;
        unit = unit.substr(0, random);
    } else if (unit.ends_with(service)) {
        unit.remove_suffix(service.size());
        unit = unit.substr(0, unit.find('@'));
    } else {
        return std::nullopt;
    }
    if (const auto launcher = unit.rfind('-'); launcher != std::string_view::npos) unit.remove_prefix(launcher + 1);
    if (unit.empty()) return std::nullopt;
    return unescaped(unit);
}

std::string_view takeUntil(std::string_view& text, char end) {
    const auto at = text.find(end);
    const std::string_view piece = text.substr(0, at);
    text.remove_prefix(at == std::string_view::npos ? text.size() : at + 1);
    return piece;
}

}  // namespace

std::optional<std::string> applicationOfGroups(std::string_view groups) {
    std::optional<std::string> innermost;
    while (!groups.empty()) {
        std::string_view path = takeUntil(groups, '\n');
        while (!path.empty()) {
            if (auto identifier = applicationOfUnit(takeUntil(path, '/'))) innermost = std::move(identifier);
        }
    }
    return innermost;
}

std::optional<std::string> nameInDesktopEntry(std::string_view entry) {
    bool isEntry = false;
    while (!entry.empty()) {
        const std::string_view line = takeUntil(entry, '\n');
        if (line.starts_with('[')) isEntry = line == "[Desktop Entry]";
        constexpr std::string_view key = "Name=";
        if (isEntry && line.starts_with(key) && line.size() > key.size()) return std::string(line.substr(key.size()));
    }
    return std::nullopt;
}

}  // namespace vostrel::linux_platform
