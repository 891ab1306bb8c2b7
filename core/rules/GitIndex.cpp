#include "rules/GitIndex.h"

#include <algorithm>
#include <cstdint>

#include "base/UnicodeText.h"

namespace vostrel {

namespace {

// Of the flags that an entry has.
constexpr unsigned extended = 0x4000;
constexpr unsigned nameLength = 0x0FFF;

// Of the kinds of entry, in the upper bits of the mode; a folder's stands for everything in it.
constexpr unsigned file = 0b1000;
constexpr unsigned link = 0b1010;
constexpr unsigned repository = 0b1110;

/// No system has longer paths.
constexpr std::size_t longestName = 4096;

/// All folders of a repository together; their memory has an end.
constexpr std::size_t longestFolders = 64U << 20U;

std::string_view folderOf(std::string_view name) {
    const auto slash = name.rfind('/');
    return name.substr(0, slash == std::string_view::npos ? 0 : slash);
}

bool isName(std::string_view name) {
    return !name.empty() && name.size() <= longestName && !name.starts_with('/') && !name.ends_with('/');
}

}  // namespace

/// Takes an index's parts off its front. Past the end everything is zero, and `isWhole` says no.
class GitIndex::Reader {
public:
    Reader(std::string_view from, std::size_t ids) : bytes(from), idLength(ids) {}

    std::string_view take(std::size_t count) {
        isWhole = isWhole && count <= bytes.size() - at;
        if (!isWhole) return {};
        at += count;
        return bytes.substr(at - count, count);
    }
    std::uint32_t number(std::size_t length) {
        std::uint32_t value = 0;
        for (const char byte : take(length))
            value = value << 8U | static_cast<unsigned char>(byte);
        return value;
    }
    /// Up to a zero, which is taken as well.
    std::string_view text() {
        const auto end = bytes.find('\0', at);
        isWhole = isWhole && end != std::string_view::npos;
        if (!isWhole) return {};
        const auto taken = take(end - at);
        take(1);
        return taken;
    }

    bool header() {
        const bool isIndex = take(4) == "DIRC";
        version = number(4);
        entriesLeft = number(4);
        return isIndex && version >= 2 && version <= 4;
    }
    /// Reads the next entry into `name` and `kind`, unless it is not as it must be.
    bool entry() {
        constexpr std::size_t statusChange = 8;
        constexpr std::size_t deviceAndInode = 8;
        constexpr std::size_t owners = 8;
        const std::size_t start = at;
        take(statusChange);
        modifiedSeconds = number(4);
        modifiedNanoseconds = number(4);
        take(deviceAndInode);
        kind = number(4) >> 12U;
        take(owners);
        size = number(4);
        take(idLength);
        const unsigned flags = number(2);
        if ((flags & extended) != 0) take(2);
        const std::string before = name;
        if (version == 4) {
            compressedName();
        } else {
            name = text();
            const std::size_t unpadded = at - 1 - start;
            const auto padding = take((unpadded + 8) / 8 * 8 - unpadded - 1);
            isWhole = isWhole && padding.find_first_not_of('\0') == std::string_view::npos;
        }
        const bool isInOrder = before < name || (before == name && !before.empty());
        const bool hasLength = std::min<std::size_t>(name.size(), nameLength) == (flags & nameLength);
        const bool isAllowed = version > 2 || (flags & extended) == 0;
        const bool isOneFile = kind == file || kind == link || kind == repository;
        return isWhole && isName(name) && isInOrder && hasLength && isAllowed && isOneFile;
    }
    /// What follows the entries, up to the checksum. A capital begins what a reader need not know.
    bool extensions() {
        while (isWhole && at < bytes.size()) {
            const auto signature = take(4);
            take(number(4));
            if (!isWhole || signature.front() < 'A' || signature.front() > 'Z') return false;
        }
        return isWhole;
    }

    std::string name;
    unsigned kind = 0;
    std::uint32_t modifiedSeconds = 0;
    std::uint32_t modifiedNanoseconds = 0;
    std::uint32_t size = 0;
    std::uint32_t entriesLeft = 0;

private:
    /// So many bytes off the end of the last name, and what comes instead.
    void compressedName() {
        constexpr std::size_t more = 0x80;
        std::size_t byte = number(1);
        std::size_t dropped = byte % more;
        while (isWhole && byte >= more && dropped < longestName) {
            byte = number(1);
            dropped = (dropped + 1) * more + byte % more;
        }
        isWhole = isWhole && byte < more && dropped <= name.size();
        if (isWhole) name.resize(name.size() - dropped);
        name += text();
    }

    std::string_view bytes;
    std::size_t idLength;
    std::size_t at = 0;
    bool isWhole = true;
    std::uint32_t version = 0;
};

struct GitIndex::Content {
    GitIndex folders;
    std::vector<Entry> entries;
};

std::optional<GitIndex> GitIndex::parse(std::string_view bytes) {
    auto content = read(bytes, false);
    return content ? std::optional(std::move(content->folders)) : std::nullopt;
}

std::vector<GitIndex::Entry> GitIndex::entriesOf(std::string_view bytes) {
    auto content = read(bytes, true);
    return content ? std::move(content->entries) : std::vector<Entry>();
}

std::optional<GitIndex::Content> GitIndex::read(std::string_view bytes, bool withEntries) {
    auto withShortIDs = read(bytes, withEntries, 20);
    auto withLongIDs = read(bytes, withEntries, 32);
    if (withShortIDs && withLongIDs) return std::nullopt;
    return withShortIDs ? std::move(withShortIDs) : std::move(withLongIDs);
}

std::optional<GitIndex::Content> GitIndex::read(std::string_view bytes, bool withEntries, std::size_t idLength) {
    const std::size_t checksumLength = idLength;
    if (bytes.size() > longest || bytes.size() < checksumLength) return std::nullopt;
    Reader reader(bytes.substr(0, bytes.size() - checksumLength), idLength);
    if (!reader.header()) return std::nullopt;
    Content content;
    std::string last;
    for (; reader.entriesLeft > 0; --reader.entriesLeft) {
        if (!reader.entry()) return std::nullopt;
        const auto folder = reader.kind == repository ? std::string_view(reader.name) : folderOf(reader.name);
        if (folder != last && !content.folders.add(folder)) return std::nullopt;
        last = folder;
        if (withEntries && reader.kind != repository)
            content.entries.push_back(
                {reader.name, reader.kind == link, reader.modifiedSeconds, reader.modifiedNanoseconds, reader.size});
    }
    return reader.extensions() ? std::optional(std::move(content)) : std::nullopt;
}

/// With all folders around it; no when that would be too much.
bool GitIndex::add(std::string_view folder) {
    for (; !folder.empty(); folder = folderOf(folder)) {
        const auto [key, isNew] = folders.insert(folded(folder));
        if (!isNew) return true;
        length += key->size();
        if (length > longestFolders) return false;
    }
    return true;
}

bool GitIndex::names(std::string_view folder) const {
    return folders.contains(folded(folder));
}

}  // namespace vostrel
