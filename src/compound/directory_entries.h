// The directory's entries, 128 bytes each: their fields, and the names' order
// ([MS-CFB] 2.6). What links them into trees stands in directory.h.
#pragma once

#include "compound/compound_file.h"
#include "compound/format.h"
#include "compound/sector_chain.h"

#include <string>
#include <string_view>
#include <vector>

namespace compound {

class DirectoryEntries {
  public:
    static constexpr EntryId kRoot = 0;

    // `sizeMask` is what counts of a stream's size.
    DirectoryEntries(SectorFile& file, SectorChain& chain, std::uint64_t sizeMask);

    // The fields of an element. Damaged when the entry does not exist or is no element, or when a
    // link leads to the root.
    format::EntryType type(EntryId id);
    std::u16string name(EntryId id);
    std::uint64_t size(EntryId id);
    std::uint32_t start(EntryId id);
    struct Content {
        std::uint32_t start;
        std::uint64_t size;
    };
    Content content(EntryId id); // start and size at once
    EntryId left(EntryId id) { return link(id, format::entry::kLeftAt); }
    EntryId right(EntryId id) { return link(id, format::entry::kRightAt); }
    EntryId child(EntryId id) { return link(id, format::entry::kChildAt); }
    format::Colour colour(EntryId id);

    // Everything at once, for walking: the element, and what stands behind it.
    struct Walked {
        Element element;
        EntryId right;
    };
    void walk(EntryId id, Walked& walked);

    void setContent(EntryId id, std::uint32_t start, std::uint64_t size);
    void setLink(EntryId id, std::size_t at, EntryId value); // `at`: the field's offset
    void setColour(EntryId id, format::Colour colour);
    void setName(EntryId id, std::u16string_view name);

    // Class id, state bits and times, 36 bytes, as they stand in the entry.
    std::vector<std::byte> attributes(EntryId id);
    void setAttributes(EntryId id, const std::vector<std::byte>& attributes);

    // Negative, 0 or positive as `name` comes before, is, or comes after the entry's.
    int compare(std::u16string_view name, EntryId id);

    // No walk of a sound file meets more entries than this.
    std::uint64_t bound() const {
        return (std::uint64_t{file_.count()} + chain_.walked()) * perPage_;
    }

    // The entry's bytes in any state.
    const std::byte* raw(EntryId id) {
        return chain_.read(id >> pageShift_) + format::kEntrySize * (id & (perPage_ - 1));
    }
    std::byte* change(EntryId id);
    std::uint64_t count(); // free ones included

    [[noreturn]] void throwDamaged(const std::string& what) const { file_.throwDamaged(what); }

  protected:
    // Zeros, and no links.
    static void clear(std::byte* at);

    SectorFile& file_;
    SectorChain& chain_;
    std::uint32_t perPage_;

  private:
    const std::byte* element(EntryId id) {
        const std::byte* const at = raw(id);
        if (!isElement(id, at)) {
            throwNoElement(id);
        }
        return at;
    }
    EntryId link(EntryId id, std::size_t at) {
        const EntryId value = format::read32(element(id) + at);
        if (value == kRoot) {
            throwLeadsToRoot(id);
        }
        return value;
    }
    static bool isElement(EntryId id, const std::byte* raw) {
        const auto type = static_cast<format::EntryType>(raw[format::entry::kTypeAt]);
        const bool known =
            id == kRoot ? type == format::EntryType::Root
                        : type == format::EntryType::Storage || type == format::EntryType::Stream;
        const std::uint16_t nameBytes = format::read16(raw + format::entry::kNameBytesAt);
        return known && nameBytes >= 4 && nameBytes <= 64 && nameBytes % 2 == 0;
    }
    [[noreturn]] void throwNoElement(EntryId id) const;
    [[noreturn]] void throwLeadsToRoot(EntryId id) const;

    unsigned pageShift_; // of perPage_, a power of two
    std::uint64_t sizeMask_;
};

} // namespace compound
