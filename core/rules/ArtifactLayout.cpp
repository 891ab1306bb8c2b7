#include "rules/ArtifactLayout.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace vostrel {

namespace {

constexpr std::size_t hashLength = 8;
constexpr std::size_t fewestHexadecimalDigits = 16;

// What Cargo makes in a profile's folder.
constexpr std::array<std::string_view, 11> programExtensions{"",     ".a",    ".dll",   ".dylib", ".exe", ".lib",
                                                             ".pdb", ".rlib", ".rmeta", ".so",    ".wasm"};

constexpr std::string_view listExtension = ".d";

// Of the folders that Swift's package manager and Xcode put beside a program, and of a plugin's state.
constexpr std::array<std::string_view, 3> productFolders{".product", ".swiftmodule", ".dSYM"};
constexpr std::string_view pluginState = "-state.json";

bool isDigit(char each) {
    return each >= '0' && each <= '9';
}

bool isCapital(char each) {
    return each >= 'A' && each <= 'Z';
}

bool isHexadecimal(char each) {
    return isDigit(each) || (each >= 'a' && each <= 'f');
}

bool isOfWord(char each) {
    return isDigit(each) || isCapital(each) || (each >= 'a' && each <= 'z') || each == '-' || each == '_';
}

/// Eight characters in base 64 or 32, one of them a capital as hardly any lacks, or in base 16 with digits and letters.
bool isHash(std::string_view text) {
    const bool isOfBase16 = std::ranges::all_of(text, isHexadecimal) && std::ranges::any_of(text, isDigit) &&
                            !std::ranges::all_of(text, isDigit);
    return isOfBase16 || (std::ranges::all_of(text, isOfWord) && std::ranges::any_of(text, isCapital));
}

bool holds(std::span<const std::string> names, std::string_view name, std::string_view ending) {
    return std::ranges::binary_search(names, std::string(name) += ending);
}

/// A program's name without its ending; nothing when no program ends so.
std::optional<std::string> programName(std::string_view file) {
    const auto dot = std::min(file.rfind('.'), file.size());
    if (std::ranges::find(programExtensions, file.substr(dot)) == programExtensions.end()) return std::nullopt;
    return std::string(file.substr(0, dot));
}

Glob::ExactPatterns patternOf(std::string_view text) {
    return Glob::ExactPatterns::compile(std::array{std::string(text)}).value_or(Glob::ExactPatterns());
}

}  // namespace

const std::vector<std::string>& ArtifactLayout::systems() {
    static const std::vector<std::string> names{"aarch64-apple-darwin",
                                                "aarch64-apple-ios",
                                                "aarch64-apple-ios-sim",
                                                "aarch64-linux-android",
                                                "aarch64-pc-windows-msvc",
                                                "aarch64-unknown-linux-gnu",
                                                "aarch64-unknown-linux-musl",
                                                "arm64-apple-ios",
                                                "arm64-apple-ios-simulator",
                                                "arm64-apple-macosx",
                                                "arm64-apple-macosx[1-9][0-9].[0-9]",
                                                "armv7-linux-androideabi",
                                                "armv7-unknown-linux-gnueabihf",
                                                "i686-linux-android",
                                                "i686-pc-windows-gnu",
                                                "i686-pc-windows-msvc",
                                                "i686-unknown-linux-gnu",
                                                "riscv64gc-unknown-linux-gnu",
                                                "thumbv6m-none-eabi",
                                                "thumbv7em-none-eabi",
                                                "thumbv7em-none-eabihf",
                                                "thumbv7m-none-eabi",
                                                "wasm32-unknown-emscripten",
                                                "wasm32-unknown-unknown",
                                                "wasm32-unknown-wasi",
                                                "wasm32-wasi",
                                                "wasm32-wasip1",
                                                "wasm32-wasip2",
                                                "x86_64-apple-darwin",
                                                "x86_64-apple-ios",
                                                "x86_64-apple-ios-simulator",
                                                "x86_64-apple-macosx",
                                                "x86_64-apple-macosx[1-9][0-9].[0-9]",
                                                "x86_64-linux-android",
                                                "x86_64-pc-windows-gnu",
                                                "x86_64-pc-windows-msvc",
                                                "x86_64-unknown-freebsd",
                                                "x86_64-unknown-linux-gnu",
                                                "x86_64-unknown-linux-musl"};
    return names;
}

ArtifactLayout ArtifactLayout::compile(std::span<const std::string> lines, std::span<const std::string> notInRuns) {
    ArtifactLayout layout;
    layout.onlyNamed = Glob::Patterns::compile(notInRuns).value_or(Glob::Patterns());
    layout.bareNamesOnlyNamed = std::ranges::find(notInRuns, "BARE") != notInRuns.end();
    for (std::string_view rest : lines) {
        Node* node = &layout.root;
        for (auto slash = rest.find('/'); slash != std::string_view::npos; slash = rest.find('/')) {
            node = &node->next(rest.substr(0, slash));
            rest.remove_prefix(slash + 1);
        }
        node->next(rest).isEnd = true;
    }
    return layout;
}

ArtifactLayout::Node& ArtifactLayout::Node::next(std::string_view name) {
    const auto known = std::ranges::find(below, name, &Node::text);
    if (known != below.end()) return *known;
    return below.emplace_back(Node{std::string(name), partOf(name), false, {}});
}

ArtifactLayout::Part ArtifactLayout::partOf(std::string_view text) {
    using Form = Part::Form;
    if (text == "SYSTEM")
        return {Form::pattern, Glob::ExactPatterns::compile(systems()).value_or(Glob::ExactPatterns()), {}, {}};
    constexpr std::array<std::pair<std::string_view, Form>, 6> wholeNames{{{"", Form::nothing},
                                                                           {"**", Form::anything},
                                                                           {"PROGRAM", Form::program},
                                                                           {"LIST", Form::list},
                                                                           {"PRODUCT", Form::product},
                                                                           {"STEM", Form::stem}}};
    for (const auto& [word, form] : wholeNames) {
        if (text == word) return {form, {}, {}, {}};
    }
    constexpr std::array<std::pair<std::string_view, Form>, 3> partsOfNames{
        {{"HASH", Form::hashed}, {"HEX", Form::hexadecimal}, {"WORD", Form::wordly}}};
    for (const auto& [word, form] : partsOfNames) {
        const auto at = text.find(word);
        if (at == std::string_view::npos) continue;
        const auto before = text.substr(0, at);
        return {form, patternOf(before), std::string(before), std::string(text.substr(at + word.size()))};
    }
    const bool isName = text.find_first_of("*?[") == std::string_view::npos;
    return {isName ? Form::name : Form::pattern, patternOf(text), {}, {}};
}

bool ArtifactLayout::Part::matches(std::string_view text, const ArtifactNeighbours& beside) const {
    switch (form) {
        case Form::name:
        case Form::pattern:
            return name.matchesAny(text);
        case Form::hashed:
            if (!text.ends_with(after) || text.size() <= after.size() + hashLength) return false;
            text.remove_suffix(after.size());
            return isHash(text.substr(text.size() - hashLength)) &&
                   name.matchesAny(text.substr(0, text.size() - hashLength));
        case Form::hexadecimal:
            return surrounds(text, fewestHexadecimalDigits, isHexadecimal);
        case Form::wordly:
            return surrounds(text, 1, isOfWord);
        case Form::program: {
            const auto program = programName(text);
            return program && holds(beside.files, *program, listExtension);
        }
        case Form::list:
            return text.ends_with(listExtension) && std::ranges::any_of(programExtensions, [&](auto extension) {
                       return holds(beside.files, text.substr(0, text.size() - listExtension.size()), extension);
                   });
        case Form::product:
            return !text.contains('.') &&
                   (holds(beside.files, text, pluginState) || std::ranges::any_of(productFolders, [&](auto ending) {
                        return holds(beside.folders, text, ending);
                    }));
        case Form::stem:
            return text == beside.around.substr(0, beside.around.rfind('.'));
        case Form::nothing:
            return false;
        case Form::anything:
            return true;
    }
    return false;
}

/// Whether at least so many characters of a kind stand between what has to stand before and after them.
bool ArtifactLayout::Part::surrounds(std::string_view text, std::size_t least, bool (*isPart)(char)) const {
    if (text.size() < before.size() + after.size() + least || !text.starts_with(before) || !text.ends_with(after))
        return false;
    return std::ranges::all_of(text.substr(before.size(), text.size() - before.size() - after.size()), isPart);
}

ArtifactLayout::Place ArtifactLayout::top() const {
    Place place(*this);
    for (const Node& node : root.below)
        place.add(node);
    return place;
}

ArtifactLayout::Place ArtifactLayout::Place::within(std::string_view folder) const {
    const auto goesOn = [&](const Node* node) { return !node->below.empty() && node->part.matches(folder, {}); };
    const auto isName = [](const Node* node) { return node->part.form == Part::Form::name; };
    const bool isNamed = std::ranges::any_of(nodes, [&](const Node* node) { return isName(node) && goesOn(node); });
    Place place(*layout);
    place.ownName = folder;
    for (const Node* node : nodes) {
        if (isNamed && !isName(node)) continue;
        if (node->part.form == Part::Form::anything) {
            place.add(*node);
        } else if (goesOn(node)) {
            for (const Node& below : node->below)
                place.add(below);
        }
    }
    return place;
}

/// A run may be of no folders at all.
void ArtifactLayout::Place::add(const Node& node) {
    if (std::ranges::find(nodes, &node) != nodes.end()) return;
    nodes.push_back(&node);
    if (node.part.form != Part::Form::anything) return;
    for (const Node& below : node.below)
        add(below);
}

bool ArtifactLayout::Place::holdsFile(std::string_view name, const ArtifactNeighbours& beside) const {
    const auto isOnlyNamed = [&] {
        return (layout->bareNamesOnlyNamed && !name.contains('.')) || layout->onlyNamed.matchesAny(name);
    };
    const ArtifactNeighbours neighbours{beside.files, beside.folders, ownName};
    return std::ranges::any_of(nodes, [&](const Node* node) {
        if (!node->isEnd) return false;
        const bool isFree = node->part.form == Part::Form::anything;
        return node->part.matches(name, neighbours) && !(isFree && isOnlyNamed());
    });
}

bool ArtifactLayout::Place::mayBeRepository() const {
    const auto isHead = [](const Node* node) {
        return node->isEnd && node->part.form == Part::Form::name && node->part.matches("HEAD", {});
    };
    return std::ranges::any_of(nodes, isHead) || std::ranges::any_of(within(".git").nodes, isHead);
}

}  // namespace vostrel
