#include "platform/AttributeRecords.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <optional>

namespace vostrel {

namespace {

enum class Group { common, folder, file, extended };

/// An attribute after the name, in the order in which records hold them: by group, then by bit.
struct Attribute {
    Group group;
    std::uint32_t bit;
    std::size_t size;
    /// Puts the packed value into the entry.
    void (*fill)(FolderEntry& entry, const std::byte* value);
};

/// Fields start on 4-byte boundaries only, so nothing is read in place.
template <class Value>
Value read(const std::byte* from) {
    Value value{};
    std::memcpy(&value, from, sizeof value);
    return value;
}

template <auto member, class Packed>
void fillNumber(FolderEntry& entry, const std::byte* value) {
    entry.*member = static_cast<std::remove_reference_t<decltype(entry.*member)>>(read<Packed>(value));
}

template <auto member, class Packed>
void fillKnown(FolderEntry& entry, const std::byte* value) {
    entry.*member = read<Packed>(value);
}

template <auto member>
void fillDate(FolderEntry& entry, const std::byte* value) {
    entry.*member = Date::fromSeconds(read<std::int64_t>(value), read<std::int64_t>(value + sizeof(std::int64_t)));
}

void fillFlags(FolderEntry& entry, const std::byte* value) {
    entry.isDataless = (read<std::uint32_t>(value) & datalessFlag) != 0;
}

constexpr auto attributes = std::to_array<Attribute>({
    {Group::common, attribute::device, 4, &fillNumber<&FolderEntry::device, std::int32_t>},
    {Group::common, attribute::objectType, 4, &fillNumber<&FolderEntry::type, std::uint32_t>},
    {Group::common, attribute::modified, 16, &fillDate<&FolderEntry::modified>},
    {Group::common, attribute::changed, 16, &fillDate<&FolderEntry::changed>},
    {Group::common, attribute::flags, 4, &fillFlags},
    {Group::common, attribute::fileID, 8, &fillNumber<&FolderEntry::fileID, std::uint64_t>},
    {Group::common, attribute::added, 16, &fillDate<&FolderEntry::added>},
    {Group::folder, attribute::folderMountStatus, 4, &fillNumber<&FolderEntry::mountStatus, std::uint32_t>},
    {Group::file, attribute::fileLinkCount, 4, &fillNumber<&FolderEntry::linkCount, std::uint32_t>},
    {Group::file, attribute::fileAllocated, 8, &fillNumber<&FolderEntry::allocated, std::int64_t>},
    {Group::file, attribute::fileLength, 8, &fillNumber<&FolderEntry::length, std::int64_t>},
    {Group::extended, attribute::extendedPrivateSize, 8, &fillKnown<&FolderEntry::privateBytes, std::int64_t>},
    {Group::extended, attribute::extendedCloneID, 8, &fillKnown<&FolderEntry::cloneID, std::uint64_t>},
    {Group::extended, attribute::extendedCloneCount, 4, &fillKnown<&FolderEntry::cloneRefCount, std::uint32_t>},
});

using Failure = std::unexpected<int>;

/// Reads a record's fields one after the other, never beyond its end.
class RecordReader {
public:
    explicit RecordReader(std::span<const std::byte> bytes) : record(bytes) {}

    /// The next `size` bytes, or none when the record ends before.
    const std::byte* take(std::size_t size) {
        if (size > record.size() - at) return nullptr;
        const std::byte* field = record.data() + at;
        at += size;
        return field;
    }

    /// A text that the next field refers to, by its distance from the field and its length with the closing zero.
    std::optional<std::string_view> takeText() {
        const auto field = static_cast<std::int64_t>(at);
        const std::byte* reference = take(8);
        if (reference == nullptr) return std::nullopt;
        const std::int64_t start = field + read<std::int32_t>(reference);
        const std::int64_t length = read<std::uint32_t>(reference + 4);
        if (start < 0 || length == 0 || start + length > static_cast<std::int64_t>(record.size())) return std::nullopt;
        const std::string_view text(reinterpret_cast<const char*>(record.data()) + start,
                                    static_cast<std::size_t>(length));
        const auto end = text.find('\0');
        if (end == std::string_view::npos) return std::nullopt;
        return text.substr(0, end);
    }

private:
    std::span<const std::byte> record;
    std::size_t at = 0;
};

/// The five words with which a record says what it holds; the second is of volumes and always empty.
std::optional<AttributeRequest> takeReturnedSet(RecordReader& record) {
    const std::byte* words = record.take(20);
    if (words == nullptr) return std::nullopt;
    return AttributeRequest{read<std::uint32_t>(words), read<std::uint32_t>(words + 8), read<std::uint32_t>(words + 12),
                            read<std::uint32_t>(words + 16)};
}

/// Only folders have attributes of folders, and only other entries those of files.
std::uint32_t bitsOf(Group group, const AttributeRequest& held, EntryType type) {
    switch (group) {
        case Group::common:
            return held.common;
        case Group::folder:
            return type == EntryType::folder ? held.folder : 0;
        case Group::file:
            return type == EntryType::folder ? 0 : held.file;
        case Group::extended:
            return held.extended;
    }
    return 0;
}

bool namesAnEntry(std::string_view name) {
    return !name.empty() && name.find('/') == std::string_view::npos;
}

std::expected<FolderEntry, int> readRecord(std::span<const std::byte> bytes, const AttributeRequest& request) {
    RecordReader record(bytes);
    if (record.take(4) == nullptr) return Failure(EIO);  // its length
    const auto returned = takeReturnedSet(record);
    if (!returned) return Failure(EIO);
    const AttributeRequest held{returned->common & request.common, returned->folder & request.folder,
                                returned->file & request.file, returned->extended & request.extended};
    FolderEntry entry;
    if ((held.common & attribute::error) != 0) {
        const std::byte* error = record.take(4);
        if (error == nullptr) return Failure(EIO);
        entry.error = read<std::int32_t>(error);
    }
    const auto name = (held.common & attribute::name) != 0 ? record.takeText() : std::nullopt;
    if (!name || !namesAnEntry(*name)) return Failure(EIO);
    entry.name = *name;
    for (const Attribute& field : attributes) {
        if ((bitsOf(field.group, held, entry.type) & field.bit) == 0) continue;
        const std::byte* value = record.take(field.size);
        if (value == nullptr) return Failure(EIO);
        field.fill(entry, value);
    }
    if (entry.error == 0 && (held.common & attribute::objectType) == 0) entry.error = EIO;
    return entry;
}

}  // namespace

AttributeRequest attributeRequest(ListingDetail detail) {
    AttributeRequest request{
        attribute::returnedSet | attribute::name | attribute::objectType | attribute::fileID | attribute::error,
        attribute::folderMountStatus, attribute::fileLinkCount | attribute::fileAllocated, 0};
    if (detail >= ListingDetail::facts) {
        request.common |=
            attribute::device | attribute::modified | attribute::changed | attribute::flags | attribute::added;
    }
    if (detail == ListingDetail::everything) {
        request.file |= attribute::fileLength;
        request.extended |= attribute::extendedPrivateSize | attribute::extendedCloneID | attribute::extendedCloneCount;
    }
    return request;
}

std::expected<void, int> readAttributeRecords(std::span<const std::byte> buffer, std::size_t records,
                                              const AttributeRequest& request, EntrySink& sink) {
    for (; records > 0; --records) {
        if (buffer.size() < sizeof(std::uint32_t)) return Failure(EIO);
        const std::size_t length = read<std::uint32_t>(buffer.data());
        if (length == 0 || length > buffer.size()) return Failure(EIO);
        const auto entry = readRecord(buffer.first(length), request);
        if (!entry) return Failure(entry.error());
        if (entry->name != "." && entry->name != "..") sink.entry(*entry);
        buffer = buffer.subspan(length);
    }
    return {};
}

}  // namespace vostrel
