#pragma once

#include <cerrno>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "base/Date.h"
#include "stores/JSONCoding.h"
#include "stores/StoredFile.h"

namespace vostrel {

/// What a load returns.
template <class Value>
struct FileLoadResult {
    Value value;
    /// The file was there but could not be used, and the default stands in for it.
    bool recoveredFromCorruption = false;
    /// Where the damaged file now lies. A damaged file without such a place is still where it was, and the next save
    /// would replace it.
    std::optional<std::filesystem::path> movedAsideTo;
    /// The system had no descriptor or memory left to read with. Nothing is known of the file, and it was not touched:
    /// the default stands in for it and must not be saved.
    std::optional<SystemError> notRead = std::nullopt;
};

/// What a load does with a file that cannot be used.
enum class DamagedFile { movesAside, stays };

/// Keeps one value in one JSON file.
///
/// A missing file reads as the default. A file that cannot be used (damaged, unreadable, no regular file) is moved
/// aside under a dated name, so that a program can always start and nothing of the user's is lost. A save replaces the
/// file as a whole or leaves it as it was. The store holds no value between calls and takes no lock: the owner
/// serialises its own loads and saves; any thread.
template <class Value>
class CodableFileStore {
public:
    CodableFileStore(std::filesystem::path directory, std::string fileName, JSONLayout chosen,
                     std::optional<std::uint16_t> fileMode, std::function<Value()> standIn,
                     FileWriter writer = systemWrite)
        : file{std::move(directory), std::move(fileName), fileMode, std::move(writer)},
          layout(chosen),
          makeDefault(std::move(standIn)) {}

    [[nodiscard]] std::filesystem::path fileURL() const { return file.path(); }
    [[nodiscard]] const std::filesystem::path& directory() const { return file.directory; }

    /// `now` only dates the name of a damaged file.
    [[nodiscard]] FileLoadResult<Value> load(Date now, DamagedFile damaged = DamagedFile::movesAside) const {
        const auto content = file.read();
        if (!content && isForWantOfMeans(content.error().code))
            return {makeDefault(), false, std::nullopt, content.error()};
        if (!content && content.error().code == ENOENT) return {makeDefault(), false, std::nullopt};
        if (content) {
            auto decoded = JSONCoding::decoder().decode<Value>(*content);
            if (decoded) return {std::move(*decoded), false, std::nullopt};
        }
        return {makeDefault(), true, damaged == DamagedFile::movesAside ? file.moveAside(now) : std::nullopt};
    }

    /// Removes what saves of killed programs left beside the file. Only while no other program can be saving.
    void removeLeftovers() const { file.removeLeftovers(); }

    [[nodiscard]] std::expected<void, StoreError> save(const Value& value) const {
        if (auto made = file.makeDirectory(); !made) return made;
        auto bytes = JSONCoding::encoder(layout).encode(value);
        if (!bytes) return std::unexpected(StoreError{StoreError::Failure::encoding, std::move(bytes).error()});
        return file.replace(*bytes);
    }

    /// The encoder of the pretty form, for showing a value as it would be stored.
    [[nodiscard]] static JSONEncoder makeEncoder() { return JSONCoding::encoder(JSONLayout::pretty); }

private:
    [[nodiscard]] static bool isForWantOfMeans(int code) { return code == EMFILE || code == ENFILE || code == ENOMEM; }

    StoredFile file;
    JSONLayout layout;
    std::function<Value()> makeDefault;
};

}  // namespace vostrel
