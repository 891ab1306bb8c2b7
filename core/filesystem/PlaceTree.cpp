#include "filesystem/PlaceTree.h"

namespace vostrel {

bool PlaceTree::Standing::isClear() const {
    return node == none && !systemTree && !homeTree && !namedTree && !accountTree && !inOthersHome && !inMediaStore &&
           !inLibraryFile;
}

PlaceTree::PlaceTree() : nodes(1) {}

void PlaceTree::add(const PathForm& place, Marks marks, std::string_view display) {
    const Index node = makeWayTo(place);
    nodes[node].marks |= marks;
    if (nodes[node].display.empty()) nodes[node].display = display;
}

void PlaceTree::addWayTo(const PathForm& ownHome) {
    const Index last = makeWayTo(ownHome);
    Index node = 0;
    std::string_view rest = ownHome.key();
    for (auto name = takeComponent(rest); !name.empty(); name = takeComponent(rest)) {
        const bool amongHomes = (nodes[node].marks & homes) != 0;
        node = childOf(node, name);
        if (amongHomes) nodes[node].marks |= node == last ? ours : ours | homes;
    }
    nodes[last].marks |= ours;
}

PlaceTree::Standing PlaceTree::standingBelow(Standing standing, std::string_view key) const {
    for (auto name = takeComponent(key); !name.empty(); name = takeComponent(key)) {
        step(standing, name);
    }
    return standing;
}

PlaceTree::Standing PlaceTree::standingAmongPlaces(const PathForm& form) const {
    Standing standing;
    std::string_view rest = form.key();
    for (auto name = takeComponent(rest); !name.empty() && standing.node != none; name = takeComponent(rest)) {
        step(standing, name);
    }
    return standing;
}

void PlaceTree::step(Standing& standing, std::string_view name) const {
    const Marks above = marks(standing.node);
    standing.node = childOf(standing.node, name);
    ++standing.depth;
    standing.isDisk = (above & disks) != 0;
    standing.isChildOfContainer = (above & (container | homes)) != 0;
    if ((above & homes) != 0 && (marks(standing.node) & ours) == 0) standing.inOthersHome = true;
    judgeName(standing, name);
    judgePlace(standing);
}

void PlaceTree::judgeName(Standing& standing, std::string_view name) {
    switch (protectedName(name)) {
        case ProtectedName::none:
            break;
        case ProtectedName::library:
            standing.inLibraryFile = true;
            break;
        case ProtectedName::diskImage:
            if (!standing.inCaches) standing.inLibraryFile = true;
            break;
        case ProtectedName::passwords:
            standing.homeTree = Hit{none, standing.depth};
            break;
        case ProtectedName::mediaStore:
            if (standing.belowLibrary) standing.inMediaStore = true;
            break;
    }
    if (name == "library") standing.belowLibrary = true;
}

void PlaceTree::judgePlace(Standing& standing) const {
    const Marks here = marks(standing.node);
    if (here == 0) return;
    const Hit hit{standing.node, standing.depth};
    if ((here & opensSystemTree) != 0) standing.systemTree.reset();
    if ((here & opensAccountTree) != 0) standing.accountTree.reset();
    if ((here & opensOthersHome) != 0) standing.inOthersHome = standing.inLibraryFile = false;

    if ((here & home) != 0 && (here & ours) == 0) standing.inOthersHome = true;
    if ((here & mediaStore) != 0) standing.inMediaStore = true;
    if ((here & systemTree) != 0) standing.systemTree = hit;
    if ((here & homeTree) != 0) standing.homeTree = hit;
    if ((here & (desktopTree | documentsTree)) != 0) standing.namedTree = hit;
    if ((here & accountTree) != 0) standing.accountTree = hit;
    if ((here & caches) != 0) standing.inCaches = true;
}

const std::string& PlaceTree::display(Index node) const {
    static const std::string asSpelled;
    return node == none ? asSpelled : nodes[node].display;
}

std::optional<PlaceTree::Index> PlaceTree::heldPlace(Index node) const {
    if (node == none) return std::nullopt;
    if ((nodes[node].marks & protecting) != 0) return node;
    for (const auto& [name, child] : nodes[node].children) {
        if (nodes[child].guessed) continue;
        if (const auto held = heldPlace(child)) return held;
    }
    return std::nullopt;
}

PlaceTree::Index PlaceTree::childOf(Index node, std::string_view name) const {
    if (node == none) return none;
    const auto found = nodes[node].children.find(name);
    return found != nodes[node].children.end() ? found->second : nodes[node].anyChild;
}

PlaceTree::Index PlaceTree::makeWayTo(const PathForm& place) {
    const bool isGuess = place.key().find('*') != std::string::npos;
    Index node = 0;
    std::string_view rest = place.key();
    for (auto name = takeComponent(rest); !name.empty(); name = takeComponent(rest)) {
        node = makeChild(node, name);
        if (!isGuess) nodes[node].guessed = false;
    }
    return node;
}

PlaceTree::Index PlaceTree::makeChild(Index node, std::string_view name) {
    if (name == "*") {
        if (nodes[node].anyChild == none) {
            const auto made = static_cast<Index>(nodes.size());
            nodes.emplace_back().guessed = true;
            nodes[node].anyChild = made;
        }
        return nodes[node].anyChild;
    }
    if (const auto found = nodes[node].children.find(name); found != nodes[node].children.end()) return found->second;

    // A child with a name of its own is still any child: it has those places too.
    const Index made = nodes[node].anyChild == none ? static_cast<Index>(nodes.size()) : copied(nodes[node].anyChild);
    if (made == nodes.size()) nodes.emplace_back();
    nodes[made].guessed = nodes[node].guessed;
    nodes[node].children.emplace(name, made);
    return made;
}

PlaceTree::Index PlaceTree::copied(Index node) {
    const auto made = static_cast<Index>(nodes.size());
    nodes.push_back(nodes[node]);
    for (const auto& [name, child] : std::map(nodes[made].children)) {
        const Index copy = copied(child);
        nodes[made].children[name] = copy;
    }
    if (nodes[node].anyChild != none) {
        const Index copy = copied(nodes[node].anyChild);
        nodes[made].anyChild = copy;
    }
    return made;
}

}  // namespace vostrel
