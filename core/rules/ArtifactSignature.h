#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Glob.h"

namespace vostrel {

/// A file that must lie beside a build folder, in its project. A package (`App.xcodeproj`) counts as a file.
struct ArtifactMarker {
    enum class Form { file, fileMatching };

    static ArtifactMarker file(std::string name);
    static ArtifactMarker fileMatching(std::string pattern);

    [[nodiscard]] bool matches(std::string_view fileName) const;
    /// "beside package.json", "beside Python files", "beside an Xcode project".
    [[nodiscard]] std::string location() const;

    friend bool operator==(const ArtifactMarker& left, const ArtifactMarker& right) {
        return left.form == right.form && left.name == right.name;
    }

    Form form = Form::file;
    /// The name, or the pattern.
    std::string name;
    Glob::Patterns pattern;
};

/// What the content of a build folder looks like, by the names in it. `ArtifactRecognition` holds folders against it.
struct ArtifactSignature {
    enum class Form {
        file,               ///< a file of that name lies directly in it
        folder,             ///< a folder of that name
        fileMatching,       ///< a file whose name matches
        folderMatching,     ///< a folder whose name matches
        folderOfLinks,      ///< a folder of that name which holds links and nothing else
        onlyFilesMatching,  ///< it holds files whose names match and nothing else
        inside,             ///< in a folder whose name matches, the one part holds
        allOf,
        anyOf,
    };

    static ArtifactSignature file(std::string name);
    static ArtifactSignature folder(std::string name);
    static ArtifactSignature fileMatching(std::string pattern);
    static ArtifactSignature folderMatching(std::string pattern);
    static ArtifactSignature folderOfLinks(std::string name);
    static ArtifactSignature onlyFilesMatching(std::string pattern);
    static ArtifactSignature inside(std::string pattern, ArtifactSignature signature);
    static ArtifactSignature allOf(std::vector<ArtifactSignature> signatures);
    static ArtifactSignature anyOf(std::vector<ArtifactSignature> signatures);

    /// "file:BUILD_ID", "inside:tmp(folder:jar)", "allOf(file:a, folder:b)".
    [[nodiscard]] std::string description() const;

    Form form = Form::anyOf;
    /// The name or the pattern.
    std::string argument;
    Glob::Patterns pattern;
    std::vector<ArtifactSignature> parts;
};

/// How one tool's folders of a kind are told from those that a person made.
struct ToolSignature {
    std::string tool;
    /// Must lie beside as well.
    std::optional<ArtifactMarker> marker;
    std::vector<ArtifactSignature> anyOf;
    /// Where the tool puts its files, as `ArtifactLayout` reads it. With anything elsewhere the whole folder is a
    /// person's.
    std::vector<std::string> own;
    /// Patterns of names that a line must name: "**" does not stand for such a file.
    std::vector<std::string> notInRuns = {};
};

}  // namespace vostrel
