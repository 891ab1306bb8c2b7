#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "filesystem/PathForm.h"
#include "filesystem/ProtectedNames.h"

namespace vostrel {

/// The protected places of one user, laid out by the components of their paths, so that one pass down a path meets
/// every place that it lies in. A "*" in a place stands for any one component.
///
/// It is built once, places with a "*" first, and is then read from any thread. It knows nothing of the disk.
class PlaceTree {
public:
    /// What a place is; one place may be several things, by links that lead to it.
    enum Mark : std::uint32_t {
        exact = 1U << 0U,
        container = 1U << 1U,
        homes = 1U << 2U,
        home = 1U << 3U,
        disks = 1U << 4U,
        mediaStore = 1U << 5U,
        /// Trees: of the system, of a home, those of the two that a rule may name a folder in, and the whole home of
        /// the account while another is acted in.
        systemTree = 1U << 6U,
        homeTree = 1U << 7U,
        desktopTree = 1U << 8U,
        documentsTree = 1U << 9U,
        accountTree = 1U << 10U,
        /// Not protected: tools keep their downloads here.
        caches = 1U << 11U,
        /// Among homes: this user's, on the way to it, or everybody's.
        ours = 1U << 12U,
        /// From here on down, what protected the path because of this no longer does.
        opensSystemTree = 1U << 13U,
        opensOthersHome = 1U << 14U,
        opensAccountTree = 1U << 15U,
    };
    using Marks = std::uint32_t;
    static constexpr Marks protecting = exact | container | homes | home | disks | mediaStore | systemTree | homeTree |
                                        desktopTree | documentsTree | accountTree;

    using Index = std::uint32_t;
    static constexpr Index none = UINT32_MAX;

    /// A place met on the way down: its node (none for one known by its name alone) and how many components deep.
    struct Hit {
        Index node = none;
        std::uint32_t depth = 0;

        friend bool operator==(const Hit&, const Hit&) = default;
    };

    /// Where a path stands after some of its components.
    struct Standing {
        Index node = 0;
        std::uint32_t depth = 0;
        std::optional<Hit> systemTree;
        std::optional<Hit> homeTree;
        std::optional<Hit> namedTree;
        std::optional<Hit> accountTree;
        bool inOthersHome = false;
        bool inMediaStore = false;
        bool inLibraryFile = false;
        bool belowLibrary = false;
        bool inCaches = false;
        bool isDisk = false;
        bool isChildOfContainer = false;

        /// Whether nothing that lies further down can be protected but by its own name.
        [[nodiscard]] bool isClear() const;
        friend bool operator==(const Standing&, const Standing&) = default;
    };

    PlaceTree();

    /// `display` is what people are shown; empty for places with a "*", which are shown as they were spelled.
    void add(const PathForm& place, Marks marks, std::string_view display);
    /// Marks the folders that lead to a home among homes.
    void addWayTo(const PathForm& ownHome);

    [[nodiscard]] Standing standing(const PathForm& form) const { return standingBelow({}, form.key()); }
    /// The same as far down as there are places: whose tree or home the path lies in is known by then, what is
    /// protected by its name alone is not. For the many folders of a walk.
    [[nodiscard]] Standing standingAmongPlaces(const PathForm& form) const;
    /// Where the path stands some components, in their folded form, further down.
    [[nodiscard]] Standing standingBelow(Standing standing, std::string_view key) const;

    [[nodiscard]] Marks marks(Index node) const { return node == none ? 0 : nodes[node].marks; }
    [[nodiscard]] const std::string& display(Index node) const;
    /// The place that would go with this node: itself, or the first one below it.
    [[nodiscard]] std::optional<Index> heldPlace(Index node) const;

private:
    struct Node {
        std::map<std::string, Index, std::less<>> children;
        Index anyChild = none;
        Marks marks = 0;
        /// Lies at or below a "*", so it may not exist: it does not protect what is above it.
        bool guessed = false;
        std::string display;
    };

    [[nodiscard]] Index childOf(Index node, std::string_view name) const;
    Index makeWayTo(const PathForm& place);
    Index makeChild(Index node, std::string_view name);
    Index copied(Index node);
    void step(Standing& standing, std::string_view name) const;
    static void judgeName(Standing& standing, std::string_view name);
    void judgePlace(Standing& standing) const;

    std::vector<Node> nodes;
};

}  // namespace vostrel
