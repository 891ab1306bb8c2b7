#include "filesystem/PlaceSurvey.h"

#include <algorithm>

#include "filesystem/ProtectedPlaces.h"

namespace vostrel {

namespace {

bool isGuess(std::string_view place) {
    return place.find('*') != std::string_view::npos;
}

bool isOfHome(PlaceBase base) {
    return base == PlaceBase::home || base == PlaceBase::linuxHome;
}

bool isOfLinux(PlaceBase base) {
    return base == PlaceBase::linuxSystem || base == PlaceBase::linuxHome;
}

PlaceTree::Marks marksOf(PlaceKind kind, PlaceBase base) {
    // A container of the system stands for itself, even inside a tree: "/run" is closed, "/run/media/me/Disk" is not.
    const PlaceTree::Marks opening = isOfHome(base) ? 0U : PlaceTree::opensSystemTree;
    switch (kind) {
        case PlaceKind::exact:
            return PlaceTree::exact;
        case PlaceKind::tree:
            return isOfHome(base) ? PlaceTree::homeTree : PlaceTree::systemTree;
        case PlaceKind::desktop:
            return PlaceTree::desktopTree;
        case PlaceKind::documents:
            return PlaceTree::documentsTree;
        case PlaceKind::container:
            return PlaceTree::container | opening | PlaceTree::ours;
        case PlaceKind::homes:
            return PlaceTree::homes | opening;
        case PlaceKind::homeFolder:
            return PlaceTree::home;
        case PlaceKind::disks:
            return PlaceTree::disks | opening;
        case PlaceKind::mediaStore:
            return PlaceTree::mediaStore;
        case PlaceKind::caches:
            return PlaceTree::caches;
    }
    return PlaceTree::exact;
}

PlaceTree::Marks marksOf(UserFolder::Part part) {
    if (part == UserFolder::Part::desktop) return PlaceTree::desktopTree;
    if (part == UserFolder::Part::documents) return PlaceTree::documentsTree;
    return PlaceTree::exact;
}

/// Lays the places out, those of the system first, so that a home can be told from one of them.
class Surveyor {
public:
    explicit Surveyor(const GuardSurroundings& surroundings) : around(surroundings) {}

    PlaceSurvey survey() {
        survey_.homeForms = formsOf(around.home);
        if (survey_.homeForms.empty()) return {};
        if (!around.accountHome.empty()) survey_.accountForms = formsOf(around.accountHome);
        if (!survey_.accountForms.empty() && survey_.accountForms.back() == survey_.homeForms.back())
            survey_.accountForms.clear();

        addSystemPlaces();
        addHomes();
        addPackages();
        addHomesPlaces(survey_.homeForms);
        addHomesPlaces(survey_.accountForms);
        addUserFolders();
        addOwnFolders();
        addTemporaryFolder();
        return std::move(survey_);
    }

private:
    [[nodiscard]] std::vector<PathForm> formsOf(const std::filesystem::path& path) const {
        std::vector<PathForm> forms;
        if (auto given = PathForm::of(path)) forms.push_back(std::move(*given));
        if (forms.empty()) return forms;
        if (const auto resolved = around.resolve(path)) {
            auto real = PathForm::of(*resolved);
            if (real && *real != forms.front()) forms.push_back(std::move(*real));
        }
        return forms;
    }

    void recognise(const PathForm& form) {
        if (const auto facts = around.examine(form.spelledPath())) survey_.recognised.emplace(facts->identity, form);
    }

    /// A place under its own path and under the one that it leads to.
    void add(const std::filesystem::path& path, PlaceTree::Marks marks, const std::string& display) {
        const auto forms = formsOf(path);
        if (forms.empty()) return;
        survey_.tree.add(forms.front(), marks, display);
        // A tree of the home that is a link back to the home, or to a folder around it, would close all of it.
        constexpr PlaceTree::Marks closing =
            PlaceTree::homeTree | PlaceTree::desktopTree | PlaceTree::documentsTree | PlaceTree::mediaStore;
        if ((marks & closing) != 0 && contains(forms.back(), survey_.homeForms)) return;
        survey_.tree.add(forms.back(), marks, display);
        recognise(forms.front());
    }

    /// A place with a "*" is shown as it is met.
    void addGuess(const std::filesystem::path& path, PlaceTree::Marks marks) {
        if (const auto form = PathForm::of(path)) survey_.tree.add(*form, marks, "");
    }

    static bool contains(const PathForm& place, const std::vector<PathForm>& forms) {
        return std::ranges::any_of(forms, [&](const PathForm& form) { return place.contains(form); });
    }

    void addSystemPlaces() {
        for (const bool guesses : {true, false}) {
            for (const auto& row : protectedPlaces()) {
                if (isOfHome(row.base) || isGuess(row.place) != guesses || !counts(row.base)) continue;
                if (guesses) {
                    addGuess(row.place, marksOf(row.kind, row.base));
                } else {
                    add(row.place, marksOf(row.kind, row.base), std::string(row.place));
                }
            }
        }
    }

    void addPackages() {
        const auto prefix = PathForm::of(around.packagePrefix);
        if (!prefix || prefix->componentCount() == 0) return;
        add(around.packagePrefix, PlaceTree::systemTree, shown(around.packagePrefix));
    }

    void addHomes() {
        const bool isAccounts = survey_.accountForms.empty();
        for (const auto& form : isAccounts ? survey_.homeForms : survey_.accountForms) {
            PlaceTree::Marks marks = isAccounts ? PlaceTree::exact : PlaceTree::accountTree;
            if (!isOrHoldsPlace(form)) marks |= PlaceTree::opensSystemTree | PlaceTree::opensOthersHome;
            survey_.tree.addWayTo(form);
            addHome(form, marks);
        }
        if (isAccounts) return;
        for (const auto& form : survey_.homeForms) {
            addHome(form, PlaceTree::exact | PlaceTree::opensAccountTree);
        }
    }

    void addHome(const PathForm& form, PlaceTree::Marks marks) {
        survey_.tree.add(form, marks, shown(form.spelledPath()));
        recognise(form);
    }

    /// A home that is a place of the system, as some services' are, opens nothing.
    [[nodiscard]] bool isOrHoldsPlace(const PathForm& form) const {
        const auto place = survey_.tree.heldPlace(survey_.tree.standing(form).node);
        return place && (survey_.tree.marks(*place) & ~(PlaceTree::home | PlaceTree::ours)) != 0;
    }

    void addHomesPlaces(const std::vector<PathForm>& homeForms) {
        for (const auto& home : homeForms) {
            for (const auto& applicationHome : applicationHomes()) {
                const auto above = home.spelledPath() / applicationHome;
                addGuess(above, PlaceTree::exact);
                forEachHomePlace(
                    [&](const ProtectedPlace& row, PlaceTree::Marks marks) { addGuess(above / row.place, marks); });
            }
            forEachHomePlace([&](const ProtectedPlace& row, PlaceTree::Marks marks) {
                const auto path = home.spelledPath() / row.place;
                add(path, marks, shown(path));
            });
        }
    }

    template <class Use>
    void forEachHomePlace(Use use) const {
        for (const auto& row : protectedPlaces()) {
            if (isOfHome(row.base) && counts(row.base)) use(row, marksOf(row.kind, row.base));
        }
    }

    void addUserFolders() {
        for (const auto& [part, folder] : around.userFolders) {
            const auto form = PathForm::of(folder);
            // The desktop names the home itself for a part that is switched off.
            if (!form || contains(*form, survey_.homeForms) || contains(*form, survey_.accountForms)) continue;
            add(folder, marksOf(part), shown(folder));
        }
    }

    /// One that holds the home closes nothing: the user put it there.
    void addOwnFolders() {
        for (const auto& folder : around.ownFolders) {
            const auto form = PathForm::of(folder);
            if (form && !contains(*form, survey_.homeForms)) add(folder, PlaceTree::homeTree, shown(folder));
        }
    }

    void addTemporaryFolder() {
        for (const auto& form : formsOf(around.temporaryFolder)) {
            PlaceTree::Marks marks = PlaceTree::exact;
            if (isOwnTemporaryFolder(form)) marks |= PlaceTree::opensSystemTree;
            if (form.componentCount() > 0) survey_.tree.add(form, marks, shown(form.spelledPath()));
        }
    }

    [[nodiscard]] bool isOwnTemporaryFolder(const PathForm& form) const {
        const auto facts = around.examine(form.spelledPath());
        if (!facts || facts->owner != around.userID) return false;
        return std::ranges::any_of(temporaryFolderPlaces(), [&](std::string_view row) {
            const auto place = PathForm::of(row);
            return place && place->contains(form) && *place != form;
        });
    }

    [[nodiscard]] bool counts(PlaceBase base) const { return around.system == SystemKind::linux || !isOfLinux(base); }

    [[nodiscard]] std::string shown(const std::filesystem::path& path) const {
        return shownPath(path, survey_.homeForms);
    }

    const GuardSurroundings& around;
    PlaceSurvey survey_;
};

std::string readable(std::string text) {
    if (text.empty()) return "an empty path";
    for (auto at = text.find('\0'); at != std::string::npos; at = text.find('\0', at))
        text.replace(at, 1, "\uFFFD");
    return text;
}

}  // namespace

PlaceSurvey PlaceSurvey::of(const GuardSurroundings& surroundings) {
    return Surveyor(surroundings).survey();
}

bool PlaceSurvey::concernsAHome(const PathForm& form) const {
    const auto isConcerned = [&](const PathForm& home) {
        return home.componentCount() > 0 && (home.contains(form) || form.contains(home));
    };
    return std::ranges::any_of(homeForms, isConcerned) || std::ranges::any_of(accountForms, isConcerned);
}

std::string shownPath(const std::filesystem::path& path, const std::vector<PathForm>& homeForms) {
    const auto form = PathForm::of(path);
    if (!form) return readable(path.native());
    for (const auto& home : homeForms) {
        if (home.componentCount() > 0 && home.contains(*form)) {
            return "~" + std::string(form->spelledBelow(home.componentCount()));
        }
    }
    return form->spelledPath().native();
}

}  // namespace vostrel
