#include "rules/TargetResolver.h"

#include <fmt/format.h>

#include <utility>

#include "base/Visit.h"
#include "filesystem/PathGuards.h"
#include "platform/UserAccount.h"
#include "rules/FullPath.h"
#include "rules/PresetCatalog.h"
#include "rules/RuleSentences.h"
#include "rules/UserTempFolder.h"

namespace vostrel {

namespace fs = std::filesystem;

namespace {

using Kind = ResolveError::Kind;

std::unexpected<ResolveError> refused(Kind kind, std::string sentence) {
    return std::unexpected(ResolveError{kind, std::move(sentence)});
}

}  // namespace

TargetResolver::TargetResolver(fs::path itsHome, const DefaultsReading& itsDefaults, const PathGuards& itsGuards)
    : TargetResolver(std::move(itsHome), itsDefaults, itsGuards, {effectiveUserID(), temporaryFolder()}) {}

TargetResolver::TargetResolver(fs::path itsHome, const DefaultsReading& itsDefaults, const PathGuards& itsGuards,
                               User itsUser)
    : home(std::move(itsHome)), defaults(&itsDefaults), guards(&itsGuards), user(std::move(itsUser)) {}

TargetResolver::Roots TargetResolver::resolve(const RuleTarget& target, const PresetCatalog& catalog) const {
    return visit(
        target, [&](const FolderTarget& folder) { return resolveFolder(folder); },
        [&](const PresetTarget& named) -> Roots {
            const Preset* preset = catalog.preset(named.id);
            if (!preset) return refused(Kind::presetUnknown, sentences::presetNotAvailable);
            return resolve(*preset);
        },
        [&](const ProjectScanTarget& scan) { return resolveProjectScan(scan); });
}

TargetResolver::Roots TargetResolver::resolveFolder(const FolderTarget& target) const {
    if (!isFullPath(target.path)) return refused(Kind::rootMissing, sentences::folderMissing);
    return std::vector{namedRootAt(target.path)};
}

TargetResolver::Roots TargetResolver::resolveProjectScan(const ProjectScanTarget& target) const {
    std::vector<ResolvedRoot> roots;
    for (const fs::path& folder : target.roots) {
        if (!isFullPath(folder)) return refused(Kind::rootMissing, sentences::folderMissing);
        if (isInLibrary(folder)) return refused(Kind::protectedRoot, sentences::noProjectsInLibrary);
        roots.push_back(namedRootAt(folder));
    }
    return roots;
}

TargetResolver::Roots TargetResolver::resolve(const Preset& preset) const {
    std::vector<ResolvedRoot> roots;
    for (const PathSource& source : preset.sources) {
        auto found = resolveSource(source);
        if (!found) return found;
        for (ResolvedRoot& root : *found) {
            root.trashOnly = root.trashOnly || preset.trashOnly;
            roots.push_back(std::move(root));
        }
    }
    return roots;
}

TargetResolver::Roots TargetResolver::resolveSource(const PathSource& source) const {
    const auto only = [](Root root) -> Roots {
        if (!root) return std::unexpected(std::move(root.error()));
        return std::vector{std::move(*root)};
    };
    return visit(
        source, [&](const HomeSource& place) { return only(rootAt(home / place.path)); },
        [&](const UserTempSource& place) { return resolveTemporaryFolder(place); },
        [&](const XcodeDerivedDataSource&) { return only(resolveDerivedData()); },
        [&](const ScreenshotFolderSource&) { return only(resolveScreenshotFolder()); },
        [&](const HomeTrashSource&) { return only(homeTrash()); });
}

TargetResolver::Roots TargetResolver::resolveTemporaryFolder(const UserTempSource& source) const {
    const auto folder = userTempFolder(user.tempBase, source.prefix, user.uid);
    if (!folder) return refused(Kind::rootUnreadable, sentences::folderUnreadable);
    if (!*folder) return std::vector<ResolvedRoot>{};
    return std::vector{rootAt(**folder)};
}

TargetResolver::Root TargetResolver::resolveScreenshotFolder() const {
    const DefaultsValue location = defaults->value(screencaptureLocationKey, screencaptureDomain);
    return visit(
        location, [&](const PreferenceMissing&) -> Root { return screenshotRootAt(home / "Desktop"); },
        [&](const PreferenceOther&) -> Root {
            return refused(Kind::settingUnreadable,
                           "Vostrel could not read where screenshots are saved, so it leaves them alone.");
        },
        [&](const std::string& value) { return chosenScreenshotFolder(value); });
}

TargetResolver::Root TargetResolver::chosenScreenshotFolder(const std::string& value) const {
    if (!isFullPath(value))
        return refused(
            Kind::settingUnreadable,
            fmt::format("The screenshot folder is set to \"{}\", which is not a full folder path, so Vostrel "
                        "leaves it alone.",
                        value));
    ResolvedRoot root = screenshotRootAt(value);
    root.setting = screenshotSettingName;
    return root;
}

TargetResolver::Root TargetResolver::resolveDerivedData() const {
    const DefaultsValue location = defaults->value(derivedDataKey, xcodeDomain);
    return visit(
        location,
        [&](const PreferenceMissing&) -> Root { return rootAt(home / "Library/Developer/Xcode/DerivedData"); },
        [&](const PreferenceOther&) -> Root {
            return refused(Kind::settingUnreadable,
                           "Vostrel could not read where Xcode keeps DerivedData, so it leaves it alone.");
        },
        [&](const std::string& value) { return chosenDerivedData(value); });
}

TargetResolver::Root TargetResolver::chosenDerivedData(const std::string& value) const {
    if (!isFullPath(value))
        return refused(Kind::settingUnreadable,
                       fmt::format("Xcode's DerivedData location is set to \"{}\", which is not a full folder path, so "
                                   "Vostrel cannot tell which folder Xcode uses.",
                                   value));
    const fs::path folder(value);
    const fs::path xcodeFolder = home / "Library/Developer/Xcode";
    const fs::path standard = xcodeFolder / "DerivedData";
    if (folder == standard || folder == standard / "") return rootAt(standard);

    const auto refuse = [&](const char* why) {
        return refused(Kind::settingUnreadable,
                       fmt::format("Xcode's DerivedData location is set to {}, {}", guards->displayPath(folder), why));
    };
    if (holds(folder, xcodeFolder))
        return refuse("which also holds Xcode's other folders, so Vostrel leaves it alone.");
    if (holds(xcodeFolder, folder))
        return refuse("inside Xcode's own folder next to its archives and device support, so Vostrel leaves it alone.");
    if (auto refusal = guards->refusalForRoot(folder)) return refused(Kind::protectedRoot, std::move(*refusal));

    ResolvedRoot root = rootAt(folder);
    root.setting = derivedDataSettingName;
    root.trashOnly = true;
    return root;
}

std::optional<std::string> TargetResolver::ownershipRefusal(const fs::path& root,
                                                            const std::optional<FileStatus>& status) const {
    constexpr unsigned writableByOthers = 022;
    const bool isTrusted = status && status->type == EntryType::folder && status->owner == user.uid &&
                           (status->mode & writableByOthers) == 0;
    if (isTrusted) return std::nullopt;
    return root.native() + " is not a folder only you can change, so Vostrel leaves it alone.";
}

bool TargetResolver::isLinked(const fs::path& folder) const {
    return leadsThroughLink(folder, {home, user.tempBase});
}

bool TargetResolver::isInLibrary(const fs::path& folder) const {
    return holds(home / "Library", folder);
}

ResolvedRoot TargetResolver::rootAt(fs::path path) const {
    ResolvedRoot root;
    root.linked = isLinked(path);
    root.trashOnly = root.linked;
    root.url = std::move(path);
    return root;
}

ResolvedRoot TargetResolver::namedRootAt(fs::path path) const {
    ResolvedRoot root = rootAt(std::move(path));
    root.exception = guards->exceptionFor(root.url);
    return root;
}

ResolvedRoot TargetResolver::screenshotRootAt(fs::path path) const {
    ResolvedRoot root = rootAt(std::move(path));
    root.screenshotFolder = true;
    root.exception = guards->screenshotException(root.url);
    return root;
}

ResolvedRoot TargetResolver::homeTrash() const {
    ResolvedRoot root = rootAt(home / ".local/share/Trash/files");
    root.datedByTrashInfo = true;
    return root;
}

}  // namespace vostrel
