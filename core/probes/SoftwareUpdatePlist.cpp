#include "probes/SoftwareUpdatePlist.h"

#include <string>

#include "platform/PropertyList.h"

namespace vostrel::SoftwareUpdatePlist {

namespace {

std::optional<std::string> text(const PropertyList& update, std::string_view key) {
    const auto* found = update.find<std::string>(key);
    return found == nullptr || found->empty() ? std::nullopt : std::optional(*found);
}

std::optional<RecommendedUpdate> updateOf(const PropertyList& entry) {
    auto productKey = text(entry, "Product Key");
    auto name = text(entry, "Display Name");
    if (!name) name = text(entry, "Identifier");
    if (!name) name = productKey;
    if (!name) return std::nullopt;
    return RecommendedUpdate{
        .name = *std::move(name), .version = text(entry, "Display Version"), .productKey = std::move(productKey)};
}

}  // namespace

std::optional<UpdatePlistInfo> parse(std::string_view bytes) {
    const auto record = PropertyList::parse(bytes);
    if (!record || record->as<PropertyList::Dictionary>() == nullptr) return std::nullopt;
    UpdatePlistInfo info;
    if (const auto* updates = record->find("RecommendedUpdates")) {
        const auto* list = updates->as<PropertyList::Array>();
        if (list == nullptr) return std::nullopt;
        for (const PropertyList& entry : *list) {
            if (auto update = updateOf(entry)) info.updates.push_back(*std::move(update));
        }
    }
    if (const auto* lastCheck = record->find<Date>("LastSuccessfulDate")) info.lastCheck = *lastCheck;
    return info;
}

}  // namespace vostrel::SoftwareUpdatePlist
