#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "access/FullDiskAccessRelaunch.h"

namespace vostrel {

/// What leads the user through granting Full Disk Access: where they stand, what to do next, and every text that is
/// shown on the way. It keeps nothing; the state is worked out afresh each time.
struct FullDiskAccessGuide {
    enum class State { notAsked, paneOpened, on };
    /// Whether the user was sent to the pane of System Settings.
    enum class Pane { notOpened, opened };
    using Phase = FullDiskAccessRelaunch::Phase;

    /// `granted` is absent while it has not been tested.
    [[nodiscard]] static State state(std::optional<bool> granted, Pane pane);
    [[nodiscard]] static bool offersRelaunch(State state) { return state == State::paneOpened; }

    /// The numbered steps, in order; none once access is on.
    [[nodiscard]] static std::vector<std::string_view> steps(State state);

    /// Only for a user who was sent to the pane.
    [[nodiscard]] static std::optional<std::string_view> grantedNote(Pane pane);
    [[nodiscard]] static std::string_view relaunchButton(Phase phase);
    [[nodiscard]] static bool isRelaunchButtonEnabled(Phase phase) { return phase != Phase::launching; }
    [[nodiscard]] static std::optional<std::string_view> relaunchNotice(Phase phase);

    static constexpr std::string_view relaunchPrompt =
        "Turned it on? Vostrel may need to start again before it can use the change.";
    static constexpr std::string_view dragCaption = "Drag this icon into the list";
    static constexpr std::string_view dragIconLabel =
        "Vostrel icon. It can be dragged into the Full Disk Access list in System Settings.";
    static constexpr std::string_view showInFinderButton = "Show Vostrel in Finder";
    static constexpr std::string_view dragHint =
        "To do the same without dragging, use the button Show Vostrel in Finder";
};

}  // namespace vostrel
