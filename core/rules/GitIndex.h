#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace vostrel {

/// The folders in which a Git repository keeps files under version control, by the bytes of its index.
///
/// Reads versions 2, 3 and 4 of the published format, with object ids of 20 or of 32 bytes. Opens nothing, and takes
/// any bytes: what is not an index from the first byte to the last is none.
class GitIndex {
public:
    /// So many bytes name millions of files.
    static constexpr std::size_t longest = 128U << 20U;

    /// Nothing when the bytes are no index, when the index does not name every file itself (it is split, or stands
    /// for whole folders), when it has a part that every reader must know and this one does not, or when it is too
    /// long.
    [[nodiscard]] static std::optional<GitIndex> parse(std::string_view bytes);

    /// A file or link as it was when Git last looked at it.
    struct Entry {
        std::string name;  ///< relative to the repository's files
        bool isLink = false;
        std::uint32_t modifiedSeconds = 0;
        std::uint32_t modifiedNanoseconds = 0;  ///< zero also where Git did not note it
        std::uint32_t length = 0;               ///< modulo 2^32
    };
    /// All that the bytes name, other repositories apart; nothing where `parse` gives nothing.
    [[nodiscard]] static std::vector<Entry> entriesOf(std::string_view bytes);

    /// Whether it names anything inside the folder, or the folder itself as another repository. `folder` is relative
    /// to the repository's files; case and Unicode form do not count.
    [[nodiscard]] bool names(std::string_view folder) const;

private:
    class Reader;

    struct Content;
    [[nodiscard]] static std::optional<Content> read(std::string_view bytes, bool withEntries);
    [[nodiscard]] static std::optional<Content> read(std::string_view bytes, bool withEntries, std::size_t idLength);
    [[nodiscard]] bool add(std::string_view folder);

    /// With all those around them, folded.
    std::unordered_set<std::string> folders;
    std::size_t length = 0;
};

}  // namespace vostrel
