#include "filesystem/ProtectedPlaces.h"

#include <array>

namespace vostrel {

namespace {

using enum PlaceKind;
using enum PlaceBase;

constexpr auto places = std::to_array<ProtectedPlace>({
    // The system and what it keeps for every user.
    {"/System", tree, system},
    {"/Library", tree, system},
    {"/Applications", tree, system},
    {"/bin", tree, system},
    {"/sbin", tree, system},
    {"/usr", tree, system},
    {"/private", tree, system},
    {"/var", tree, system},
    {"/etc", tree, system},
    {"/dev", tree, system},
    {"/opt/homebrew", tree, system},
    {"/usr/local/Homebrew", tree, system},
    {"/System/Volumes/Data/.DocumentRevisions-V100", tree, system},
    {"/System/Volumes/Data/.Spotlight-V100", tree, system},
    {"/System/Volumes/Data/.fseventsd", tree, system},
    // Paths that reach any file by another name.
    {"/.vol", tree, system},
    {"/.nofollow", tree, system},
    {"/.resolve", tree, system},

    // Homes and disks.
    {"/Users", homes, system},
    {"/Users/Shared", container, system},
    {"/home", homes, system},
    {"/Volumes", disks, system},
    {"/Volumes/*/Users", homes, system},
    {"/Volumes/*/home", homes, system},
    {"/Volumes/*/.DocumentRevisions-V100", tree, system},
    {"/Volumes/*/.Spotlight-V100", tree, system},
    {"/Volumes/*/.fseventsd", tree, system},
    {"/Volumes/.timemachine", tree, system},

    // What a person made.
    {"Documents", documents, home},
    {"Desktop", desktop, home},
    {"Pictures", exact, home},
    {"Pictures/Photos Library.photoslibrary", tree, home},
    {"Pictures/Photo Booth Library", tree, home},
    {"Movies", exact, home},
    {"Movies/TV", tree, home},
    {"Music", exact, home},
    {"Music/Music", tree, home},
    {"Music/iTunes", tree, home},
    {"Applications", tree, home},

    // Folders that a cloud keeps in step: what goes here goes on every machine.
    {"Dropbox", tree, home},
    {"Google Drive", tree, home},
    {"OneDrive", tree, home},
    {"Box", tree, home},
    {"Box Sync", tree, home},
    {"Creative Cloud Files", tree, home},
    {"MEGA", tree, home},
    {"Nextcloud", tree, home},
    {"ownCloud", tree, home},
    {"pCloud Drive", tree, home},
    {"Library/Mobile Documents", tree, home},
    {"Library/CloudStorage", tree, home},

    // Keys, passwords and settings.
    {".ssh", tree, home},
    {".gnupg", tree, home},
    {".password-store", tree, home},
    {".config", tree, home},
    {".aws", tree, home},
    {".azure", tree, home},
    {".kube", tree, home},
    {"Library/Keychains", tree, home},
    {"Library/Preferences", tree, home},
    {"Library/Accounts", tree, home},

    // The home Library: open but for what follows.
    {"Library", exact, home},
    {"Library/Caches", caches, home},
    {".cache", caches, home},
    {"Library/Application Support", container, home},
    {"Library/Containers", container, home},
    {"Library/Group Containers", container, home},
    {"Library/Daemon Containers", container, home},
    {"Library/Developer", container, home},
    {"Library/Developer/CoreSimulator/Devices", tree, home},
    {"Library/Developer/Xcode/UserData", tree, home},

    // Mail, messages, calendars, browsing: what people cannot make again.
    {"Library/Mail", tree, home},
    {"Library/Messages", tree, home},
    {"Library/Calendars", tree, home},
    {"Library/Contacts", tree, home},
    {"Library/Reminders", tree, home},
    {"Library/Safari", tree, home},
    {"Library/Cookies", tree, home},
    {"Library/Photos", tree, home},
    {"Library/Stickies", tree, home},
    {"Library/Shortcuts", tree, home},
    {"Library/HomeKit", tree, home},
    {"Library/Passes", tree, home},
    {"Library/Finance", tree, home},
    {"Library/FinanceBackup", tree, home},
    {"Library/CallServices", tree, home},
    {"Library/IdentityServices", tree, home},
    {"Library/Autosave Information", tree, home},
    {"Library/Thunderbird", tree, home},
    {"Library/Application Support/MobileSync", tree, home},
    {"Library/Application Support/AddressBook", tree, home},
    {"Library/Application Support/CallHistoryDB", tree, home},
    {"Library/Application Support/CallHistoryTransactions", tree, home},
    {"Library/Application Support/CloudDocs", tree, home},
    {"Library/Application Support/FileProvider", tree, home},
    {"Library/Application Support/com.apple.TCC", tree, home},
    {"Library/Application Support/com.apple.sharedfilelist", tree, home},
    {"Library/Application Support/Google/Chrome", tree, home},
    {"Library/Application Support/BraveSoftware/Brave-Browser", tree, home},
    {"Library/Application Support/Microsoft Edge", tree, home},
    {"Library/Application Support/Firefox", tree, home},
    {"Library/Application Support/Code/User", tree, home},
    {"Library/Group Containers/group.com.apple.notes", tree, home},

    // What a person added to the system: fonts, keyboard layouts, services, sounds, scripts, signing profiles.
    {"Library/Fonts", tree, home},
    {"Library/FontCollections", tree, home},
    {"Library/Keyboard Layouts", tree, home},
    {"Library/Input Methods", tree, home},
    {"Library/Spelling", tree, home},
    {"Library/Services", tree, home},
    {"Library/Scripts", tree, home},
    {"Library/Application Scripts", tree, home},
    {"Library/LaunchAgents", tree, home},
    {"Library/PreferencePanes", tree, home},
    {"Library/Audio", tree, home},
    {"Library/ColorSync", tree, home},
    {"Library/MobileDevice", tree, home},

    // Stores of the Music, TV and Podcasts apps that lie outside their containers.
    {"Library/iTunes", mediaStore, home},
    {"Library/Application Support/Music", mediaStore, home},
    {"Library/Application Support/com.apple.MediaPlayer", mediaStore, home},
    {"Library/Application Support/iLifeMediaBrowser", mediaStore, home},

    // Linux: the system.
    {"/boot", tree, linuxSystem},
    {"/efi", tree, linuxSystem},
    {"/lib", tree, linuxSystem},
    {"/lib32", tree, linuxSystem},
    {"/lib64", tree, linuxSystem},
    {"/libx32", tree, linuxSystem},
    {"/proc", tree, linuxSystem},
    {"/sys", tree, linuxSystem},
    {"/run", tree, linuxSystem},
    {"/opt", tree, linuxSystem},
    {"/srv", tree, linuxSystem},
    {"/snap", tree, linuxSystem},
    {"/nix", tree, linuxSystem},
    {"/gnu", tree, linuxSystem},
    {"/ostree", tree, linuxSystem},
    {"/sysroot", tree, linuxSystem},
    {"/lost+found", tree, linuxSystem},
    {"/.snapshots", tree, linuxSystem},
    {"/timeshift", tree, linuxSystem},
    {"/tmp", exact, linuxSystem},
    {"/root", homeFolder, linuxSystem},
    {"/var/home", homes, linuxSystem},
    {"/mnt", disks, linuxSystem},
    {"/mnt/*/Users", homes, linuxSystem},
    {"/mnt/*/home", homes, linuxSystem},
    // A disk lies here itself or below its user's name; where it is mounted the mount tells.
    {"/media", container, linuxSystem},
    {"/media/*/Users", homes, linuxSystem},
    {"/media/*/home", homes, linuxSystem},
    {"/media/*/*/Users", homes, linuxSystem},
    {"/media/*/*/home", homes, linuxSystem},
    {"/run/media", container, linuxSystem},
    {"/run/media/*/*/Users", homes, linuxSystem},
    {"/run/media/*/*/home", homes, linuxSystem},

    // Linux: the home.
    {".cache", exact, linuxHome},
    {".local", exact, linuxHome},
    {".local/bin", tree, linuxHome},
    {".local/lib", tree, linuxHome},
    {".local/share", container, linuxHome},
    {".local/share/akonadi", tree, linuxHome},
    {".local/share/applications", tree, linuxHome},
    {".local/share/contacts", tree, linuxHome},
    {".local/share/evolution", tree, linuxHome},
    {".local/share/fonts", tree, linuxHome},
    {".local/share/keyrings", tree, linuxHome},
    {".local/share/kwalletd", tree, linuxHome},
    {".local/share/local-mail", tree, linuxHome},
    {".fonts", tree, linuxHome},
    {".mozilla", tree, linuxHome},
    {".pki", tree, linuxHome},
    {".thunderbird", tree, linuxHome},
    {".var", tree, linuxHome},
    {"snap", tree, linuxHome},
    {"Videos", exact, linuxHome},
    {"Templates", exact, linuxHome},
    {"Public", exact, linuxHome},
});

constexpr std::array<std::string_view, 3> temporaryPlaces{"/var/folders", "/private/var/folders", "/var/tmp"};

constexpr std::array<std::string_view, 2> homesOfApplications{"Library/Containers/*/Data",
                                                              "Library/Group Containers/*"};

}  // namespace

std::span<const ProtectedPlace> protectedPlaces() {
    return places;
}

std::span<const std::string_view> temporaryFolderPlaces() {
    return temporaryPlaces;
}

std::span<const std::string_view> applicationHomes() {
    return homesOfApplications;
}

}  // namespace vostrel
