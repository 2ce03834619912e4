#include "compound/directory_entries.h"

#include "compound/names.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>

namespace compound {

using namespace format;

namespace {

constexpr std::size_t kAttributesAt = entry::kClassIdAt;
constexpr std::size_t kAttributeBytes = entry::kStartAt - entry::kClassIdAt;

EntryType typeOf(const std::byte* raw) {
    return static_cast<EntryType>(std::to_integer<std::uint8_t>(raw[entry::kTypeAt]));
}

std::size_t unitsOf(const std::byte* raw) {
    return read16(raw + entry::kNameBytesAt) / 2U - 1U;
}

void readName(const std::byte* raw, std::u16string& text) {
    text.resize(unitsOf(raw));
    for (std::size_t i = 0; i < text.size(); ++i) {
        text[i] = static_cast<char16_t>(read16(raw + entry::kNameAt + 2 * i));
    }
}

// How many units at the beginning of the name are surely those that are stored: a multiple of four,
// which are compared at once. The names on a search's way share long beginnings.
std::size_t equalUnits(std::u16string_view name, const std::byte* stored) {
    constexpr std::size_t kAtOnce = 4;
    std::size_t equal = 0;
    if constexpr (std::endian::native == std::endian::little) {
        while (equal + kAtOnce <= name.size() &&
               std::memcmp(name.data() + equal, stored + 2 * equal, 2 * kAtOnce) == 0) {
            equal += kAtOnce;
        }
    }
    return equal;
}

} // namespace

DirectoryEntries::DirectoryEntries(SectorFile& file, SectorChain& chain, std::uint64_t sizeMask)
    : file_(file),
      chain_(chain),
      perPage_(file.sectorSize() / static_cast<std::uint32_t>(kEntrySize)),
      pageShift_(static_cast<unsigned>(std::countr_zero(perPage_))),
      sizeMask_(sizeMask) {}

std::uint64_t DirectoryEntries::count() {
    return std::uint64_t{chain_.count()} * perPage_;
}

void DirectoryEntries::throwNoElement(EntryId id) const {
    throwDamaged("directory entry " + std::to_string(id) + " is no element");
}

void DirectoryEntries::throwLeadsToRoot(EntryId id) const {
    throwDamaged("directory entry " + std::to_string(id) + " leads back to the root");
}

std::byte* DirectoryEntries::change(EntryId id) {
    return chain_.write(id / perPage_) + kEntrySize * (id % perPage_);
}

EntryType DirectoryEntries::type(EntryId id) {
    return typeOf(element(id));
}

std::u16string DirectoryEntries::name(EntryId id) {
    std::u16string text;
    readName(element(id), text);
    return text;
}

void DirectoryEntries::walk(EntryId id, Walked& walked) {
    const std::byte* const at = element(id);
    const bool isStream = typeOf(at) == EntryType::Stream;
    readName(at, walked.element.name);
    walked.element.kind = isStream ? ElementKind::Stream : ElementKind::Storage;
    walked.element.size = isStream ? read64(at + entry::kSizeAt) & sizeMask_ : 0;
    walked.element.id = id;
    walked.right = read32(at + entry::kRightAt);
}

std::uint64_t DirectoryEntries::size(EntryId id) {
    return read64(element(id) + entry::kSizeAt) & sizeMask_;
}

DirectoryEntries::Content DirectoryEntries::content(EntryId id) {
    const std::byte* const at = element(id);
    return {read32(at + entry::kStartAt), read64(at + entry::kSizeAt) & sizeMask_};
}

std::uint32_t DirectoryEntries::start(EntryId id) {
    return read32(element(id) + entry::kStartAt);
}

Colour DirectoryEntries::colour(EntryId id) {
    const bool red = element(id)[entry::kColourAt] == std::byte{0};
    return red ? Colour::Red : Colour::Black;
}

void DirectoryEntries::setContent(EntryId id, std::uint32_t start, std::uint64_t size) {
    std::byte* const at = change(id);
    write32(at + entry::kStartAt, start);
    write64(at + entry::kSizeAt, size);
}

void DirectoryEntries::setLink(EntryId id, std::size_t at, EntryId value) {
    if (link(id, at) != value) {
        write32(change(id) + at, value);
    }
}

void DirectoryEntries::setColour(EntryId id, Colour colour) {
    const auto value = static_cast<std::byte>(colour);
    if (element(id)[entry::kColourAt] != value) {
        change(id)[entry::kColourAt] = value;
    }
}

std::vector<std::byte> DirectoryEntries::attributes(EntryId id) {
    const std::byte* const at = element(id) + kAttributesAt;
    return {at, at + kAttributeBytes};
}

void DirectoryEntries::setAttributes(EntryId id, const std::vector<std::byte>& attributes) {
    if (attributes != this->attributes(id)) {
        std::copy(attributes.begin(), attributes.end(), change(id) + kAttributesAt);
    }
}

void DirectoryEntries::setName(EntryId id, std::u16string_view name) {
    std::byte* const at = change(id);
    std::memset(at + entry::kNameAt, 0, 64);
    for (std::size_t i = 0; i < name.size(); ++i) {
        write16(at + entry::kNameAt + 2 * i, name[i]);
    }
    write16(at + entry::kNameBytesAt, static_cast<std::uint16_t>(2 * name.size() + 2));
}

int DirectoryEntries::compare(std::u16string_view name, EntryId id) {
    const std::byte* const at = element(id);
    const std::size_t units = unitsOf(at);
    if (name.size() != units) {
        return name.size() < units ? -1 : 1;
    }
    for (std::size_t i = equalUnits(name, at + entry::kNameAt); i < units; ++i) {
        const auto other = static_cast<char16_t>(read16(at + entry::kNameAt + 2 * i));
        const int difference = name[i] == other ? 0 : int{toUpper(name[i])} - int{toUpper(other)};
        if (difference != 0) {
            return difference;
        }
    }
    return 0;
}

void DirectoryEntries::clear(std::byte* at) {
    std::memset(at, 0, kEntrySize);
    for (const std::size_t field : {entry::kLeftAt, entry::kRightAt, entry::kChildAt}) {
        write32(at + field, kNoEntry);
    }
}

} // namespace compound
