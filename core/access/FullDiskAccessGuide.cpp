#include "access/FullDiskAccessGuide.h"

namespace vostrel {

FullDiskAccessGuide::State FullDiskAccessGuide::state(std::optional<bool> granted, Pane pane) {
    if (granted.value_or(false)) return State::on;
    return pane == Pane::opened ? State::paneOpened : State::notAsked;
}

std::vector<std::string_view> FullDiskAccessGuide::steps(State state) {
    if (state == State::on) return {};
    constexpr std::string_view comeBackFirst =
        "Come back to Vostrel. A change to Full Disk Access may only take effect when Vostrel starts again, and a "
        "relaunch button appears here after the first step.";
    constexpr std::string_view comeBackAgain =
        "Come back to Vostrel. If this page still says Full Disk Access is off, press the relaunch button below, "
        "because the change may only take effect when Vostrel starts again.";
    return {"Press Open Full Disk Access. It opens Privacy & Security > Full Disk Access in System Settings.",
            "Drag Vostrel into the list, or press the plus button and choose it. macOS asks for your password or Touch "
            "ID when you turn it on.",
            state == State::notAsked ? comeBackFirst : comeBackAgain};
}

std::optional<std::string_view> FullDiskAccessGuide::grantedNote(Pane pane) {
    if (pane == Pane::notOpened) return std::nullopt;
    return "Scan again to include the protected folders.";
}

std::string_view FullDiskAccessGuide::relaunchButton(Phase phase) {
    return phase == Phase::launching ? "Relaunching…" : "I turned it on, relaunch Vostrel";
}

std::optional<std::string_view> FullDiskAccessGuide::relaunchNotice(Phase phase) {
    if (phase != Phase::failed) return std::nullopt;
    return "Vostrel could not start a new copy, so it is still running. Quit it from its menu and open it again "
           "yourself.";
}

}  // namespace vostrel
