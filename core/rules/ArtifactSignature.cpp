#include "rules/ArtifactSignature.h"

#include <array>
#include <utility>

namespace vostrel {

namespace {

using Form = ArtifactSignature::Form;

/// The tables hold valid patterns only; with another one nothing would match.
Glob::Patterns compiled(const std::string& pattern) {
    return Glob::Patterns::compile(std::array{pattern}).value_or(Glob::Patterns());
}

ArtifactSignature signature(Form form, std::string argument, std::vector<ArtifactSignature> parts = {}) {
    ArtifactSignature made{form, std::move(argument), {}, std::move(parts)};
    if (!made.argument.empty()) made.pattern = compiled(made.argument);
    return made;
}

std::string_view word(Form form) {
    switch (form) {
        case Form::file:
            return "file:";
        case Form::folder:
            return "folder:";
        case Form::fileMatching:
            return "fileMatching:";
        case Form::folderMatching:
            return "folderMatching:";
        case Form::folderOfLinks:
            return "folderOfLinks:";
        case Form::onlyFilesMatching:
            return "onlyFilesMatching:";
        case Form::inside:
            return "inside:";
        case Form::allOf:
            return "allOf";
        case Form::anyOf:
            return "anyOf";
    }
    return {};
}

}  // namespace

ArtifactMarker ArtifactMarker::file(std::string name) {
    return {Form::file, std::move(name), {}};
}

ArtifactMarker ArtifactMarker::fileMatching(std::string pattern) {
    auto matching = compiled(pattern);
    return {Form::fileMatching, std::move(pattern), std::move(matching)};
}

bool ArtifactMarker::matches(std::string_view fileName) const {
    return form == Form::file ? fileName == name : pattern.matchesAny(fileName);
}

std::string ArtifactMarker::location() const {
    if (name == "*.py") return "beside Python files";
    if (name == "*.xcodeproj" || name == "*.xcworkspace") return "beside an Xcode project";
    return "beside " + name;
}

ArtifactSignature ArtifactSignature::file(std::string name) {
    return signature(Form::file, std::move(name));
}

ArtifactSignature ArtifactSignature::folder(std::string name) {
    return signature(Form::folder, std::move(name));
}

ArtifactSignature ArtifactSignature::fileMatching(std::string pattern) {
    return signature(Form::fileMatching, std::move(pattern));
}

ArtifactSignature ArtifactSignature::folderMatching(std::string pattern) {
    return signature(Form::folderMatching, std::move(pattern));
}

ArtifactSignature ArtifactSignature::folderOfLinks(std::string name) {
    return signature(Form::folderOfLinks, std::move(name));
}

ArtifactSignature ArtifactSignature::onlyFilesMatching(std::string pattern) {
    return signature(Form::onlyFilesMatching, std::move(pattern));
}

ArtifactSignature ArtifactSignature::inside(std::string pattern, ArtifactSignature part) {
    return signature(Form::inside, std::move(pattern), {std::move(part)});
}

ArtifactSignature ArtifactSignature::allOf(std::vector<ArtifactSignature> signatures) {
    return signature(Form::allOf, {}, std::move(signatures));
}

ArtifactSignature ArtifactSignature::anyOf(std::vector<ArtifactSignature> signatures) {
    return signature(Form::anyOf, {}, std::move(signatures));
}

std::string ArtifactSignature::description() const {
    std::string text(word(form));
    text += argument;
    if (parts.empty()) return text;
    std::string_view before = "(";
    for (const ArtifactSignature& part : parts) {
        text += before;
        text += part.description();
        before = ", ";
    }
    return text + ")";
}

}  // namespace vostrel
