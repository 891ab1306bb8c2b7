#include "filesystem/PathForm.h"

#include <algorithm>

#include "base/UnicodeText.h"

namespace vostrel {

namespace {

constexpr std::string_view dataVolume = "/system/volumes/data";

/// Where the component with this number ends: the length of the path down to it.
std::size_t lengthOf(std::string_view path, std::size_t components) {
    std::size_t end = 0;
    for (; components > 0 && end < path.size(); --components)
        end = std::min(path.find('/', end + 1), path.size());
    return end;
}

/// Whether no component is empty, "." or "..": so are the paths that a walk makes.
bool isStandardised(std::string_view path) {
    for (std::size_t slash = 0; slash < path.size(); slash = std::min(path.find('/', slash + 1), path.size())) {
        const std::string_view rest = path.substr(slash + 1);
        if (rest.empty() || rest.front() == '/') return false;
        if (rest.front() != '.') continue;
        const std::string_view component = rest.substr(0, rest.find('/'));
        if (component == "." || component == "..") return false;
    }
    return true;
}

std::string standardised(std::string_view path) {
    if (isStandardised(path)) return std::string(path);
    std::string plain;
    plain.reserve(path.size());
    for (auto component = takeComponent(path); !component.empty(); component = takeComponent(path)) {
        if (component == ".") continue;
        if (component == "..") {
            plain.resize(plain.empty() ? 0 : plain.rfind('/'));
            continue;
        }
        plain += '/';
        plain += component;
    }
    return plain;
}

}  // namespace

std::string_view takeComponent(std::string_view& path) {
    path.remove_prefix(std::min(path.find_first_not_of('/'), path.size()));
    const auto component = path.substr(0, path.find('/'));
    path.remove_prefix(component.size());
    return component;
}

std::optional<PathForm> PathForm::ofText(std::string_view path) {
    if (!path.starts_with('/') || path.find('\0') != std::string_view::npos) return std::nullopt;

    PathForm form;
    form.spelled = standardised(path);
    form.folded.reserve(form.spelled.size());
    // Component by component: folding a whole path at once could compose across a slash.
    const bool hasNothingToCompose = isASCII(form.spelled);
    if (hasNothingToCompose) appendFolded(form.folded, form.spelled);
    std::string_view rest = hasNothingToCompose ? std::string_view() : form.spelled;
    for (auto component = takeComponent(rest); !component.empty(); component = takeComponent(rest)) {
        form.folded += '/';
        appendFolded(form.folded, component);
    }
    const std::string_view key = form.folded;
    if (key.starts_with(dataVolume) && (key.size() == dataVolume.size() || key[dataVolume.size()] == '/')) {
        form.spelled.erase(0, lengthOf(form.spelled, 3));
        form.folded.erase(0, dataVolume.size());
    }
    return form;
}

std::size_t PathForm::componentCount() const {
    return static_cast<std::size_t>(std::ranges::count(folded, '/'));
}

bool PathForm::contains(const PathForm& other) const {
    return other.folded.starts_with(folded) &&
           (other.folded.size() == folded.size() || other.folded[folded.size()] == '/');
}

std::filesystem::path PathForm::spelledPrefix(std::size_t components) const {
    return components == 0 || spelled.empty() ? "/" : spelled.substr(0, lengthOf(spelled, components));
}

std::string_view PathForm::spelledBelow(std::size_t components) const {
    return std::string_view(spelled).substr(lengthOf(spelled, components));
}

std::string_view PathForm::spelledName() const {
    const std::string_view path = spelled;
    return path.substr(std::min(path.rfind('/') + 1, path.size()));
}

std::string_view PathForm::keyBelow(std::size_t components) const {
    return std::string_view(folded).substr(lengthOf(folded, components));
}

}  // namespace vostrel
