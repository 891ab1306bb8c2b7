#include "rules/ArtifactLayout.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace vostrel {

namespace {

constexpr std::string_view hashWord = "HASH";
constexpr std::size_t hashLength = 8;

/// Eight letters, digits, "-" or "_"; not digits only, which may be a date, nor letters such as a word has them.
bool isHash(std::string_view text) {
    const auto isOneOf = [](auto test) {
        return [test](char each) { return test(static_cast<unsigned char>(each)) != 0; };
    };
    const auto isPart = [&](char each) { return isOneOf(::isalnum)(each) || each == '-' || each == '_'; };
    const bool isWord = std::ranges::all_of(text.substr(1), isOneOf(::islower));
    const auto letters = std::ranges::find_if_not(text, isOneOf(::isalpha));
    const bool isWordAndNumber = std::all_of(letters, text.end(), isOneOf(::isdigit)) && letters != text.end();
    return std::ranges::all_of(text, isPart) && !isWord && !isWordAndNumber;
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

ArtifactLayout ArtifactLayout::compile(std::span<const std::string> lines) {
    ArtifactLayout layout;
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
        case Form::program:
            return std::ranges::find(beside, std::string(text.substr(0, text.rfind('.'))) + ".d") != beside.end();
        case Form::nothing:
            return false;
        case Form::anything:
        case Form::anythingAndRepositories:
            return true;
    }
    return false;
}

bool ArtifactLayout::matches(std::span<const Part> line, Path path, std::span<const std::string> beside) {
    if (line.empty()) return path.empty();
    const bool isRun =
        line.front().form == Part::Form::anything || line.front().form == Part::Form::anythingAndRepositories;
    if (!isRun) {
        return !path.empty() && line.front().matches(path.front(), beside) &&
               matches(line.subspan(1), path.subspan(1), beside);
    }
    if (line.size() == 1) return !path.empty();
    return matches(line.subspan(1), path, beside) || (!path.empty() && matches(line, path.subspan(1), beside));
}

bool ArtifactLayout::holdsFile(Path path, std::span<const std::string> beside) const {
    return std::ranges::any_of(allowed, [&](const Line& line) { return matches(line, path, beside); });
}

bool ArtifactLayout::holdsFolder(std::string_view name) const {
    return std::ranges::any_of(allowed,
                               [&](const Line& line) { return line.size() > 1 && line.front().matches(name, {}); });
}

bool ArtifactLayout::holdsRepository(Path folder) const {
    return std::ranges::any_of(allowed, [&](const Line& line) {
        return line.back().form == Part::Form::anythingAndRepositories && matches(line, folder, {});
    });
}

}  // namespace vostrel
