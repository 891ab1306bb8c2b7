#include "probes/SimulatorImagesPlist.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <system_error>

#include "base/Uuid.h"
#include "platform/PropertyList.h"

namespace vostrel::SimulatorImagesPlist {

namespace {

/// The bytes that "%20" and its like stand for; nothing when one of them is no byte of a path.
std::optional<std::string> withoutPercents(std::string_view text) {
    constexpr int hexadecimal = 16;
    std::string plain;
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (text[index] != '%') {
            plain += text[index];
            continue;
        }
        const std::string_view digits = text.substr(index + 1, 2);
        unsigned char byte = 0;
        const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), byte, hexadecimal);
        if (digits.size() < 2 || read.ec != std::errc() || read.ptr != digits.data() + 2) return std::nullopt;
        plain += static_cast<char>(byte);
        index += 2;
    }
    return plain.contains('\0') ? std::nullopt : std::optional(plain);
}

/// The path that a "file:" URL of this machine names, or an absolute path itself.
std::optional<std::filesystem::path> pathIn(std::string_view text) {
    if (text.starts_with('/')) return std::filesystem::path(text);
    for (const std::string_view beginning : {"file://localhost/", "file:///"}) {
        if (!text.starts_with(beginning)) continue;
        auto plain = withoutPercents(text.substr(beginning.size() - 1));
        return plain ? std::optional<std::filesystem::path>(*std::move(plain)) : std::nullopt;
    }
    return std::nullopt;
}

std::optional<std::string> optionalText(const std::string* text) {
    return text == nullptr ? std::nullopt : std::optional(*text);
}

std::optional<SimulatorImage> imageOf(const PropertyList& entry) {
    const auto* identifier = entry.find<std::string>("uuid");
    const PropertyList* place = entry.find("path");
    if (identifier == nullptr || !Uuid::parse(*identifier) || place == nullptr) return std::nullopt;
    const auto* location = place->as<std::string>();
    if (location == nullptr) location = place->find<std::string>("relative");
    auto path = location == nullptr ? std::nullopt : pathIn(*location);
    if (!path) return std::nullopt;
    SimulatorImage image{
        .identifier = *identifier, .runtime = {}, .build = {}, .path = *std::move(path), .bytes = {}, .lastUsed = {}};
    if (const PropertyList* facts = entry.find("runtimeInfo")) {
        image.runtime = optionalText(facts->find<std::string>("bundleIdentifier"));
        image.build = optionalText(facts->find<std::string>("build"));
    }
    if (const auto* lastUsed = entry.find<Date>("lastUsedAt")) image.lastUsed = *lastUsed;
    return image;
}

}  // namespace

std::optional<std::vector<SimulatorImage>> parse(std::string_view bytes) {
    const auto record = PropertyList::parse(bytes);
    const auto* list = record ? record->find<PropertyList::Array>("images") : nullptr;
    if (list == nullptr) return std::nullopt;
    std::vector<SimulatorImage> images;
    for (const PropertyList& entry : *list) {
        if (auto image = imageOf(entry)) images.push_back(*std::move(image));
    }
    return images;
}

std::string runtimeName(std::string_view runtime) {
    constexpr std::string_view beginning = "com.apple.CoreSimulator.SimRuntime.";
    std::string name(runtime.starts_with(beginning) ? runtime.substr(beginning.size()) : runtime);
    if (name.size() == runtime.size()) return name;
    std::ranges::replace(name, '-', '.');
    if (const auto first = name.find('.'); first != std::string::npos) name[first] = ' ';
    return name;
}

}  // namespace vostrel::SimulatorImagesPlist
