#pragma once

#include <array>
#include <optional>
#include <string>

#include "base/Uuid.h"
#include "probes/ProbeResults.h"
#include "stores/JSONCoder.h"
#include "stores/JSONRecord.h"

namespace vostrel {

/// How answers of the system are stored. One that cannot be read back counts as not checked.

template <>
struct JSONNames<ProbeUnknown> {
    static constexpr std::array list{
        JSONName{ProbeUnknown::failed, "failed"},         JSONName{ProbeUnknown::timedOut, "timedOut"},
        JSONName{ProbeUnknown::cancelled, "cancelled"},   JSONName{ProbeUnknown::unrecognized, "unrecognized"},
        JSONName{ProbeUnknown::unreadable, "unreadable"}, JSONName{ProbeUnknown::notChecked, "notChecked"},
    };
    static constexpr ProbeUnknown unknown = ProbeUnknown::failed;
};

/// An object with the one key "known" or "unknown".
template <class Value>
struct JSONCoder<ProbeValue<Value>> {
    static JSONValue encode(const ProbeValue<Value>& value) {
        if (const auto reason = value.unknown()) return JSONObject{{"unknown", encodeJSON(*reason)}};
        return JSONObject{{"known", encodeJSON(*value.value())}};
    }

    static Decoded<ProbeValue<Value>> decode(const JSONValue& value) {
        const auto object = json::objectIn(value);
        if (!object) return std::unexpected(object.error());
        const JSONValue* known = (*object)->find("known");
        const JSONValue* unknown = (*object)->find("unknown");
        if ((known == nullptr) == (unknown == nullptr)) return jsonFault("Neither known nor unknown.");
        if (known != nullptr) return decodeJSON<Value>(*known);
        return decodeJSON<ProbeUnknown>(*unknown);
    }
};

template <>
struct JSONFields<SwapUsage> {
    static constexpr std::array list{
        jsonField<&SwapUsage::totalBytes>("totalBytes"),
        jsonField<&SwapUsage::usedBytes>("usedBytes"),
        jsonField<&SwapUsage::freeBytes>("freeBytes"),
    };
};

template <>
struct JSONFields<RecommendedUpdate> {
    static constexpr std::array list{
        jsonField<&RecommendedUpdate::name>("name"),
        jsonField<&RecommendedUpdate::version>("version"),
        jsonField<&RecommendedUpdate::productKey>("productKey"),
    };
};

template <>
struct JSONFields<UpdatePlistInfo> {
    static constexpr std::array list{
        jsonField<&UpdatePlistInfo::updates, JSONReading::eachReadable>("updates"),
        jsonField<&UpdatePlistInfo::lastCheck, JSONReading::lenient>("lastCheck"),
    };
};

template <>
struct JSONFields<SimulatorImage> {
    static constexpr std::array list{
        jsonField<&SimulatorImage::identifier>("identifier"), jsonField<&SimulatorImage::runtime>("runtime"),
        jsonField<&SimulatorImage::build>("build"),           jsonField<&SimulatorImage::path>("path"),
        jsonField<&SimulatorImage::bytes>("bytes"),           jsonField<&SimulatorImage::lastUsed>("lastUsed"),
    };
    /// The identifier may be put into a command: what is no UUID is refused here too.
    static std::optional<std::string> settle(SimulatorImage& image) {
        if (!Uuid::parse(image.identifier)) return "An image is named by something else than a UUID.";
        return std::nullopt;
    }
};

template <>
struct JSONFields<MemoryConsumer> {
    static constexpr std::array list{
        jsonField<&MemoryConsumer::name>("name"),
        jsonField<&MemoryConsumer::bytes>("bytes"),
        jsonField<&MemoryConsumer::processes>("processes"),
    };
};

template <>
struct JSONFields<ProbeResults> {
    static constexpr std::array list{
        jsonField<&ProbeResults::swap, JSONReading::lenient>("swap"),
        jsonField<&ProbeResults::localSnapshots, JSONReading::lenient>("localSnapshots"),
        jsonField<&ProbeResults::updatePlist, JSONReading::lenient>("updatePlist"),
        jsonField<&ProbeResults::simulatorImages, JSONReading::lenient>("simulatorImages"),
        jsonField<&ProbeResults::memory, JSONReading::lenient>("memory"),
    };
};

}  // namespace vostrel
