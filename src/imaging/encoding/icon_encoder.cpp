// ICO and CUR: 32-bit bitmaps with a mask for programs that know no alpha, and PNG pictures from
// 256 pixels on, where a bitmap would take very much room.
// Sources: "Icons" (J. Hornick, Microsoft, 1995); PNG frames as [MS-ICO]-era documentation of
// ICONDIRENTRY describes them.
#include "imaging/byte_reader.h"
#include "imaging/decoders.h"
#include "imaging/encoding/dib_writer.h"
#include "imaging/encoding/formats.h"
#include "imaging/icon_directory.h"

#include <QBuffer>
#include <QImageWriter>

#include <algorithm>
#include <array>
#include <map>
#include <new>
#include <string>

namespace imaging {

namespace {

constexpr int kFirstPngSide = 256;
constexpr int kBitsPerPixel = 32;
constexpr std::size_t kEntryHead = 8; // sizes, and planes with depth or the hot spot

using Bytes = std::span<const std::byte>;

struct Entry {
    std::array<std::byte, kEntryHead> head{};
    Bytes data;
};

std::vector<std::byte> bitmapFrame(const QImage& image) {
    DibForm form;
    form.size = image.size();
    form.bitsPerPixel = kBitsPerPixel;
    form.heightFactor = 2;
    form.imageBytes =
        static_cast<std::uint32_t>(dibBytes(form.size, kBitsPerPixel) + dibBytes(form.size, 1));
    ByteWriter out;
    writeDibHeader(out, form);
    writeDibRows(out, image, kBitsPerPixel);
    writeMask(out, image);
    return out.take();
}

std::vector<std::byte> pngFrame(const QImage& image) {
    QByteArray png;
    QBuffer buffer(&png);
    QImageWriter writer(&buffer, "PNG");
    if (!writer.write(image)) {
        throw EncodeError("the icon's PNG picture cannot be written: " +
                          writer.errorString().toStdString());
    }
    const auto bytes =
        std::as_bytes(std::span(png.constData(), static_cast<std::size_t>(png.size())));
    return {bytes.begin(), bytes.end()};
}

std::vector<std::byte> frameOf(const QImage& image) {
    const bool isPng = std::max(image.width(), image.height()) >= kFirstPngSide;
    return isPng ? pngFrame(image) : bitmapFrame(image);
}

// Sides that a byte cannot tell are told by the PNG picture; 0 stands for them.
std::uint32_t sideByte(int side) {
    return side < kFirstPngSide ? static_cast<std::uint32_t>(side) : 0;
}

Entry entryOf(const QImage& image, PictureKind kind, QPoint hotSpot, Bytes data) {
    const bool isCursor = kind == PictureKind::Cur;
    const auto inside = [](int value, int side) {
        return static_cast<std::uint32_t>(std::clamp(value, 0, side - 1));
    };
    ByteWriter head;
    head.u8(sideByte(image.width()));
    head.u8(sideByte(image.height()));
    head.u16(0); // no palette
    head.u16(isCursor ? inside(hotSpot.x(), image.width()) : 1);
    head.u16(isCursor ? inside(hotSpot.y(), image.height()) : kBitsPerPixel);
    Entry entry;
    const std::vector<std::byte> bytes = head.take();
    std::copy(bytes.begin(), bytes.end(), entry.head.begin());
    entry.data = data;
    return entry;
}

// A file whose frames are kept.
class KeptIcon {
  public:
    explicit KeptIcon(Bytes file) : in_(file), count_(in_.u16(4)) {
        const IconDirectory icon = readIconDirectory(file);
        shown_ = decodeShownFrame(icon).frame.entry;
        for (const IconFrame& frame : icon.frames) {
            needed_[frame.entry] = neededBytes(frame);
        }
        for (std::size_t i = 0; i < count_ && in_.has(entryAt(i), kIconEntryBytes); ++i) {
            offsets_.push_back(offsetOf(i));
        }
        count_ = offsets_.size();
        std::sort(offsets_.begin(), offsets_.end());
    }

    // All entries in their order, with the picture's in the place of the shown one's; those that
    // have no data are left out.
    std::vector<Entry> with(const Entry& picture) const {
        std::vector<Entry> entries;
        for (std::size_t i = 0; i < count_; ++i) {
            Entry entry = picture;
            if (i != shown_) {
                const Bytes head = in_.part(entryAt(i), kEntryHead);
                std::copy(head.begin(), head.end(), entry.head.begin());
                entry.data = dataOf(i);
            }
            if (!entry.data.empty()) {
                entries.push_back(entry);
            }
        }
        return entries;
    }

  private:
    static std::size_t entryAt(std::size_t i) { return kIconDirectoryBytes + i * kIconEntryBytes; }
    std::size_t offsetOf(std::size_t i) const { return in_.u32(entryAt(i) + 12); }

    // Stated lengths are often wrong: one that does not hold the pixels is no length, and data end
    // before the next frame's unless they need more.
    Bytes dataOf(std::size_t i) const {
        const std::size_t stated = in_.u32(entryAt(i) + 8);
        const std::size_t offset = offsetOf(i);
        const Bytes rest = in_.rest(offset);
        const auto found = needed_.find(i);
        const std::size_t needed = found == needed_.end() ? 0 : found->second;
        const auto next = std::upper_bound(offsets_.begin(), offsets_.end(), offset);
        std::size_t length = next == offsets_.end() ? rest.size() : *next - offset;
        if (stated > 0 && stated >= needed) {
            length = std::min(length, stated);
        }
        return rest.first(std::min(std::max(length, needed), rest.size()));
    }

    ByteReader in_;
    std::size_t count_;
    std::size_t shown_ = 0;
    std::map<std::size_t, std::size_t> needed_; // bytes of the frames that can be measured
    std::vector<std::size_t> offsets_;          // ascending
};

std::vector<Entry> entriesWith(const Entry& picture, PictureKind kind, Bytes file) {
    if (sniff(file) != kind) {
        return {picture};
    }
    try {
        return KeptIcon(file).with(picture);
    } catch (const DecodeError& error) {
        throw EncodeError(std::string("the icon's other pictures cannot be kept: ") + error.what());
    }
}

// Frames may share their data; a hostile file could let very many overlap.
void refuseOverlaps(const std::map<std::pair<const std::byte*, std::size_t>, std::size_t>& places,
                    std::size_t most) {
    std::size_t total = 0;
    for (const auto& [data, place] : places) {
        total += data.second;
    }
    if (total > most) {
        throw EncodeError("the icon's other pictures overlap each other");
    }
}

} // namespace

std::vector<std::byte> encodeIcon(const QImage& image, PictureKind kind, const Kept& kept) {
    const std::vector<std::byte> frame = frameOf(image);
    const std::vector<Entry> entries =
        entriesWith(entryOf(image, kind, kept.hotSpot, frame), kind, kept.file);
    std::map<std::pair<const std::byte*, std::size_t>, std::size_t> places; // of data in the file
    std::size_t end = kIconDirectoryBytes + entries.size() * kIconEntryBytes;
    ByteWriter out;
    out.u16(0);
    out.u16(kind == PictureKind::Cur ? kCursorType : kIconType);
    out.u16(static_cast<std::uint32_t>(entries.size()));
    std::vector<Bytes> data;
    for (const Entry& entry : entries) {
        const auto [place, isNew] =
            places.emplace(std::pair(entry.data.data(), entry.data.size()), end);
        if (isNew) {
            data.push_back(entry.data);
            end += entry.data.size();
        }
        out.append(entry.head);
        out.u32(static_cast<std::uint32_t>(entry.data.size()));
        out.u32(static_cast<std::uint32_t>(place->second));
    }
    refuseOverlaps(places, frame.size() + kept.file.size());
    for (const Bytes bytes : data) {
        out.append(bytes);
    }
    return out.take();
}

} // namespace imaging
