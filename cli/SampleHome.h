#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <map>
#include <string>
#include <tuple>

#include "base/Date.h"
#include "base/SystemError.h"

namespace vostrel::cli {

/// A made-up home folder in a temporary folder of its own, which goes with everything in it when the object goes.
///
/// What it holds is as old as the real clock says, so the demonstration's clock stands forty days ahead; what is to
/// look fresh gets dates near that clock.
class SampleHome {
public:
    /// Makes the folder and fills it; `present` is the demonstration's clock.
    static std::expected<SampleHome, SystemError> make(Date present);
    SampleHome(const SampleHome&) = delete;
    SampleHome(SampleHome&& other) noexcept;
    SampleHome& operator=(const SampleHome&) = delete;
    SampleHome& operator=(SampleHome&& other) = delete;
    ~SampleHome();

    [[nodiscard]] std::filesystem::path home() const { return folder / "home"; }
    [[nodiscard]] std::filesystem::path data() const { return folder / "data"; }
    [[nodiscard]] std::filesystem::path downloads() const { return home() / "Downloads"; }

    /// What every file, folder and link of the home is at this moment: enough to tell any change.
    using Stamp = std::tuple<std::uint64_t, std::uint16_t, std::int64_t, std::int64_t, std::int64_t>;
    [[nodiscard]] std::map<std::string, Stamp> stamps() const;

private:
    explicit SampleHome(std::filesystem::path path) : folder(std::move(path)) {}

    std::filesystem::path folder;
};

}  // namespace vostrel::cli
