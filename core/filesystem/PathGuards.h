#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "filesystem/GuardException.h"
#include "filesystem/GuardSurroundings.h"
#include "filesystem/PathForm.h"
#include "filesystem/PlaceJudgement.h"
#include "filesystem/PlaceSurvey.h"
#include "filesystem/PlaceTree.h"

namespace vostrel {

/// Says of any path whether it may be cleaned and, where it may not, the sentence that tells the user why.
///
/// It is built once for a user's home folder and only read from then on, from any thread; copies share what was
/// built. It never changes the disk. Paths are judged by their text first, as given and with their links resolved, and
/// what the text settles asks the system nothing; what is left is asked of the system, a few calls for a root.
///
/// A refusal is a whole sentence. No refusal means that the guards know of nothing against it, not that the item is
/// the one that was planned: identity, ownership and dates are the callers' to check.
class PathGuards {
public:
    static constexpr std::string_view otherHomeRefusal = refusal::otherHome;

    /// Where a walk begins, and what is known of it: made once, asked for every entry.
    class WalkRoot {
    public:
        [[nodiscard]] const std::filesystem::path& url() const { return path; }
        /// The root's forms: as given, as resolved, and where it lies in the home by another mount.
        [[nodiscard]] const std::vector<PathForm>& forms() const { return known; }
        /// The root's own name ends in an extension of a photo, music or video library, a disk image or a backup.
        [[nodiscard]] bool hasProtectedExtension() const { return protectedExtension; }

    private:
        friend class PathGuards;
        /// A folder below the root that is mounted inside a home as well.
        struct Alias {
            std::string keyBelow;
            PathForm form;
        };

        std::filesystem::path path;
        std::vector<PathForm> known;
        std::vector<PlaceTree::Standing> standings;
        std::vector<Alias> aliases;
        bool protectedExtension = false;
        bool isReadable = false;
        bool isClear = false;
        bool inCaches = false;
        bool belowLibrary = false;
        bool screenshotsOnly = false;
        bool inICloud = false;
    };

    /// For the running user, whose own home this is.
    explicit PathGuards(const std::filesystem::path& home, const Environment& environment = processEnvironment());
    explicit PathGuards(GuardSurroundings surroundings);

    [[nodiscard]] const std::filesystem::path& home() const { return around->home; }

    /// Whether a rule may have this folder as its root. Nothing need be known of the path.
    [[nodiscard]] std::optional<std::string> refusalForRoot(const std::filesystem::path& root,
                                                            const std::optional<GuardException>& exception = {}) const;

    /// Whether this item may go; nothing is known of it but its path. Its folder's links are resolved, its own is not.
    [[nodiscard]] std::optional<std::string> refusalForItem(const std::filesystem::path& item,
                                                            const std::optional<GuardException>& exception = {}) const;

    /// The same for an item that the caller found in its root by open folders: it lies on the root's mount, and its
    /// path goes through no link.
    [[nodiscard]] std::optional<std::string> refusalForVerifiedItem(
        const std::filesystem::path& item, const std::optional<GuardException>& exception = {}) const;

    /// Prepares a walk of this folder. Whether a cloud keeps it is asked here once: what lies in a folder is kept where
    /// the folder is.
    [[nodiscard]] WalkRoot walkRoot(const std::filesystem::path& root,
                                    const std::optional<GuardException>& exception = {}) const;

    /// The same for an entry that the walk met: verified as above, and every folder between the root and it was asked
    /// and not refused. `folder` is relative to the root, empty for the root itself. Costs no system call, and nothing
    /// is allocated unless a protected place may lie inside the root.
    [[nodiscard]] std::optional<std::string> refusalForWalkedItem(const WalkRoot& root, std::string_view folder,
                                                                  std::string_view name) const;
    [[nodiscard]] std::optional<std::string> refusalForWalkedItem(const WalkRoot& root,
                                                                  std::string_view relativePath) const;

    /// The permission that goes with naming this folder, where it lies inside the Desktop or the Documents tree, both
    /// as it was named and as its links lead. The trees themselves get none.
    [[nodiscard]] std::optional<GuardException> exceptionFor(const std::filesystem::path& folder) const;

    /// The same for the folder that screenshots are saved to, which may be one of the trees itself: then only files
    /// directly inside it and named like screenshots are open. That they are files is the caller's to check.
    [[nodiscard]] std::optional<GuardException> screenshotException(const std::filesystem::path& folder) const;

    /// Whether the item is a placeholder whose content is only in the cloud.
    [[nodiscard]] bool isDataless(const std::filesystem::path& item) const { return around->isDatalessPath(item); }

    /// Whose place it is, for those who only look: another user's home, the system's, or neither. Goes by the text of
    /// the form alone.
    enum class Region { open, othersHome, system };
    [[nodiscard]] Region regionOf(const PathForm& form) const;
    /// The home acted in, as given and as resolved, and the account's own where that is another one.
    [[nodiscard]] std::vector<PathForm> homeForms() const;

    /// The path as people are shown it: the home folder as "~".
    [[nodiscard]] std::string displayPath(const std::filesystem::path& path) const;

private:
    /// A path under judgement: the text shown for it, and the forms it is known in.
    struct Entry {
        std::string display;
        std::vector<PathForm> forms;
    };

    [[nodiscard]] Entry entry(const std::filesystem::path& path) const;
    [[nodiscard]] std::optional<PathForm> resolvedForm(const std::filesystem::path& path) const;
    [[nodiscard]] std::vector<PathForm> recognisedForms(const PathForm& form, std::size_t followed) const;
    [[nodiscard]] std::optional<std::string> aliasRefusal(const WalkRoot::Alias& alias, const PathForm& form,
                                                          std::size_t rootDepth, const std::string& shown) const;
    [[nodiscard]] std::optional<std::string> aliasedBelowRefusal(const PathForm& item, const std::string& shown) const;
    [[nodiscard]] std::optional<GuardPermission> permission(const std::optional<GuardException>& exception) const;
    [[nodiscard]] std::optional<std::string> textRefusal(const Entry& judged, Asked asked,
                                                         const std::optional<GuardPermission>& permission) const;
    [[nodiscard]] std::optional<std::string> nameRefusal(const WalkRoot& root, std::string_view folder,
                                                         std::string_view name) const;
    [[nodiscard]] std::optional<std::string> refusalBelow(const WalkRoot& root, std::string_view relativePath) const;
    [[nodiscard]] std::optional<GuardException> exceptionIn(const std::filesystem::path& folder) const;

    std::shared_ptr<const GuardSurroundings> around;
    std::shared_ptr<const PlaceSurvey> places;
};

}  // namespace vostrel
