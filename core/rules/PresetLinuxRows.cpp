#include "rules/PresetRows.h"

namespace vostrel {

const std::vector<PresetLinuxRow>& presetLinuxRows() {
    static const std::vector<PresetLinuxRow> rows{
        {"swiftpm-cache", {HomeSource{".cache/org.swift.swiftpm"}}, {}},
        {"yarn-cache", {HomeSource{".cache/yarn"}}, {}},
        {"pnpm-cache", {HomeSource{".cache/pnpm"}}, {}},
        {"pip-cache", {HomeSource{".cache/pip"}}, {}},
        {"homebrew-downloads", {HomeSource{".cache/Homebrew"}}, {}},
        {"go-build-cache", {HomeSource{".cache/go-build"}}, {}},
        {"playwright-browsers", {HomeSource{".cache/ms-playwright"}}, {}},
        {"jetbrains-caches",
         {HomeSource{".cache/JetBrains"}},
         {"jetbrains-idea", "jetbrains-idea-ce", "jetbrains-pycharm", "jetbrains-pycharm-ce", "jetbrains-webstorm",
          "jetbrains-goland", "jetbrains-clion", "jetbrains-rider", "jetbrains-rustrover", "jetbrains-phpstorm",
          "jetbrains-datagrip", "jetbrains-rubymine"}},
        {"chrome-cache", {HomeSource{".cache/google-chrome"}}, {"google-chrome"}},
        {"edge-cache", {HomeSource{".cache/microsoft-edge"}}, {"microsoft-edge", "com.microsoft.Edge"}},
        {"firefox-cache", {HomeSource{".cache/mozilla/firefox"}}, {"firefox", "firefox-esr"}},
        {"brave-cache", {HomeSource{".cache/BraveSoftware/Brave-Browser"}}, {"brave-browser"}},
        {.id = "old-trash", .sources = {HomeTrashSource{}}, .pauseWhileRunning = {}, .replacesSources = true},
    };
    return rows;
}

}  // namespace vostrel
