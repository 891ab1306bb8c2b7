#include "rules/ArtifactLayout.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>

namespace vostrel {

namespace {

constexpr std::string_view hashWord = "HASH";
constexpr std::size_t hashLength = 8;

// What Cargo makes in a profile's folder.
constexpr std::array<std::string_view, 11> programExtensions{"",     ".a",    ".dll",   ".dylib", ".exe", ".lib",
                                                             ".pdb", ".rlib", ".rmeta", ".so",    ".wasm"};

constexpr std::string_view listExtension = ".d";

std::size_t countOf(std::string_view text, int (*isOne)(int)) {
    const auto* end =
        std::ranges::find_if(text, [&](char each) { return isOne(static_cast<unsigned char>(each)) == 0; });
    return static_cast<std::size_t>(end - text.begin());
}

/// Whether people write that: a letter, a version, or words and numbers one after the other ("2024Jan", "homePage2").
bool isOfWords(std::string_view text) {
    const auto start = countOf(text, ::isalpha);
    // "p5sketch", "i18nmain", and in "draft-2b" the end.
    const auto number = countOf(text.substr(std::min<std::size_t>(start, 1)), ::isdigit);
    const auto rest = text.substr(std::min(text.size(), std::min<std::size_t>(start, 1) + number));
    const bool isNumberedWord = start == 1 && number > 0 && rest.size() >= 4 && countOf(rest, ::islower) == rest.size();
    const bool isLetteredNumber = start == 0 && number > 0 && rest.size() == 1;
    if (isNumberedWord || isLetteredNumber) return true;
    if (text.size() == 1 || (start < text.size() && start + countOf(text.substr(start), ::isdigit) == text.size()))
        return true;
    while (!text.empty()) {
        auto capitals = countOf(text, ::isupper);
        auto lowers = countOf(text.substr(capitals), ::islower);
        if (capitals > 1 && lowers > 0) {  // the last one begins the next word
            --capitals;
            lowers = 0;
        }
        const auto letters = capitals + lowers;
        const auto digits = countOf(text.substr(letters), ::isdigit);
        const bool isVersion = letters == 1 && digits > 0 && (text.front() == 'v' || text.front() == 'V');
        const bool isWord = letters > 1 && (lowers > 0 || digits == 0);
        if (letters > 0 && !isVersion && !isWord) return false;
        text.remove_prefix(letters + digits);
    }
    return true;
}

/// Eight letters, digits, "-" or "_" that are not merely words, versions and dates.
bool isHash(std::string_view text) {
    const auto isSeparator = [](char each) { return each == '-' || each == '_'; };
    bool isOfHash = false;
    while (!text.empty()) {
        const auto length = countOf(text, ::isalnum);
        if (length == 0 && !isSeparator(text.front())) return false;
        isOfHash = isOfHash || !isOfWords(text.substr(0, length));
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return isOfHash;
}

bool hasBeside(std::span<const std::string> beside, const std::string& name) {
    return std::ranges::binary_search(beside, name);
}

/// A program's name without its ending; nothing when no program ends so.
std::optional<std::string> programName(std::string_view file) {
    const auto dot = std::min(file.rfind('.'), file.size());
    if (std::ranges::find(programExtensions, file.substr(dot)) == programExtensions.end()) return std::nullopt;
    return std::string(file.substr(0, dot));
}

Glob::Patterns patternOf(std::string_view text) {
    return Glob::Patterns::compile(std::array{std::string(text)}).value_or(Glob::Patterns());
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
    for (std::string_view rest : lines) {
        Line& line = layout.allowed.emplace_back();
        for (auto slash = rest.find('/'); slash != std::string_view::npos; slash = rest.find('/')) {
            line.push_back(partOf(rest.substr(0, slash)));
            rest.remove_prefix(slash + 1);
        }
        line.push_back(partOf(rest));
    }
    return layout;
}

ArtifactLayout::Part ArtifactLayout::partOf(std::string_view text) {
    if (text.empty()) return {Part::Form::nothing, {}, {}};
    if (text == "**") return {Part::Form::anything, {}, {}};
    if (text == "***") return {Part::Form::anythingAndRepositories, {}, {}};
    if (text == "PROGRAM") return {Part::Form::program, {}, {}};
    if (text == "LIST") return {Part::Form::list, {}, {}};
    if (text == "SYSTEM") return {Part::Form::name, Glob::Patterns::compile(systems()).value_or(Glob::Patterns()), {}};
    const auto hash = text.find(hashWord);
    if (hash == std::string_view::npos) return {Part::Form::name, patternOf(text), {}};
    return {Part::Form::hashedName, patternOf(text.substr(0, hash)), std::string(text.substr(hash + hashWord.size()))};
}

bool ArtifactLayout::Part::matches(std::string_view text, std::span<const std::string> beside) const {
    switch (form) {
        case Form::name:
            return name.matchesAny(text);
        case Form::hashedName: {
            if (!text.ends_with(afterHash) || text.size() <= afterHash.size() + hashLength) return false;
            text.remove_suffix(afterHash.size());
            return isHash(text.substr(text.size() - hashLength)) &&
                   name.matchesAny(text.substr(0, text.size() - hashLength));
        }
        case Form::program: {
            auto program = programName(text);
            return program && hasBeside(beside, *program += listExtension);
        }
        case Form::list:
            return text.ends_with(listExtension) && std::ranges::any_of(programExtensions, [&](auto extension) {
                       return hasBeside(beside,
                                        std::string(text.substr(0, text.size() - listExtension.size())) += extension);
                   });
        case Form::nothing:
            return false;
        case Form::anything:
        case Form::anythingAndRepositories:
            return true;
    }
    return false;
}

ArtifactLayout::Place ArtifactLayout::top() const {
    Place place(*this);
    for (const Line& line : allowed)
        place.add(line);
    return place;
}

ArtifactLayout::Place ArtifactLayout::Place::within(std::string_view folder) const {
    Place place(*layout);
    for (const Rest rest : rests) {
        if (rest.front().isRun()) {
            place.add(rest);
        } else if (rest.size() > 1 && rest.front().matches(folder, {})) {
            place.add(rest.subspan(1));
        }
    }
    return place;
}

/// A run may be of no folders at all.
void ArtifactLayout::Place::add(Rest rest) {
    const bool isKnown = std::ranges::any_of(
        rests, [&](Rest known) { return known.data() == rest.data() && known.size() == rest.size(); });
    if (isKnown) return;
    rests.push_back(rest);
    if (rest.front().isRun() && rest.size() > 1) add(rest.subspan(1));
}

bool ArtifactLayout::Place::holdsFile(std::string_view name, std::span<const std::string> beside) const {
    return std::ranges::any_of(rests, [&](Rest rest) {
        if (rest.size() > 1) return false;
        const bool isFree = rest.front().form == Part::Form::anything;
        return rest.front().matches(name, beside) && !(isFree && layout->onlyNamed.matchesAny(name));
    });
}

bool ArtifactLayout::Place::mayBeRepository() const {
    return std::ranges::any_of(
        rests, [](Rest rest) { return rest.size() == 1 && rest.front().form == Part::Form::anythingAndRepositories; });
}

}  // namespace vostrel
