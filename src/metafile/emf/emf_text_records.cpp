// EMF records that draw text.
// Source: [MS-EMF] 2.2.5 (EmrText), 2.3.5.7, 2.3.5.8, 2.3.5.32, 2.3.5.33, 2.3.5.37.
#include "metafile/emf/emf_records.h"

#include <algorithm>

namespace metafile {

namespace {

enum Type : std::uint32_t {
    ExtTextOutA = 83,
    ExtTextOutW = 84,
    PolyTextOutA = 96,
    PolyTextOutW = 97,
    SmallTextOut = 108,
};

enum Option : std::uint32_t {
    Opaque = 0x2,
    Clipped = 0x4,
    GlyphIndex = 0x10,
    RightToLeft = 0x80,
    NoRectangle = 0x100,
    SmallCharacters = 0x200,
    VerticalAdvances = 0x2000,
};

enum class CharacterWidth : std::size_t { Byte = 1, Unit = 2 };

constexpr std::uint32_t kAdvancedMode = 2;

TextTransform transformOf(std::uint32_t graphicsMode) {
    return graphicsMode == kAdvancedMode ? TextTransform::WithAxes : TextTransform::Upright;
}

QString unitsAt(const imaging::ByteReader& in, std::size_t at, std::size_t count) {
    QString text;
    text.reserve(static_cast<qsizetype>(count));
    for (std::size_t i = 0; i < count; ++i) {
        text.append(QChar(in.u16(at + 2 * i)));
    }
    return text;
}

// Sets the characters; as many as the record holds.
std::size_t readCharacters(const imaging::ByteReader& in, std::size_t at, std::size_t count,
                           CharacterWidth width, std::uint32_t options, Text& text) {
    const auto step = static_cast<std::size_t>(width);
    count = std::min(count, in.rest(at).size() / step);
    if (width == CharacterWidth::Byte) {
        const auto bytes = in.part(at, count);
        text.characters = QByteArray(reinterpret_cast<const char*>(bytes.data()),
                                     static_cast<qsizetype>(bytes.size()));
    } else if ((options & GlyphIndex) != 0) {
        std::vector<std::uint16_t> glyphs;
        for (std::size_t i = 0; i < count; ++i) {
            glyphs.push_back(in.u16(at + 2 * i));
        }
        text.characters = std::move(glyphs);
    } else {
        text.characters = unitsAt(in, at, count);
    }
    return count;
}

void readAdvances(const imaging::ByteReader& in, std::size_t at, std::size_t count,
                  std::uint32_t options, Text& text) {
    const bool pairs = (options & VerticalAdvances) != 0;
    const std::size_t step = pairs ? 8 : 4;
    if (at == 0 || !in.has(at, count * step)) {
        return;
    }
    for (std::size_t i = 0; i < count; ++i) {
        text.advances.push_back(in.i32(at + step * i));
        if (pairs) {
            text.verticalAdvances.push_back(in.i32(at + step * i + 4));
        }
    }
}

void applyOptions(std::uint32_t options, Text& text) {
    text.opaque = (options & Opaque) != 0;
    text.clipped = (options & Clipped) != 0;
    text.rightToLeft = (options & RightToLeft) != 0;
}

// One text whose description begins at `at`.
Text readText(const imaging::ByteReader& in, std::size_t at, CharacterWidth width,
              TextTransform transform) {
    Text text;
    text.transform = transform;
    text.reference = pointAt(in, at);
    const std::uint32_t options = in.u32(at + 16);
    applyOptions(options, text);
    if ((options & NoRectangle) == 0 && (options & (Opaque | Clipped)) != 0) {
        text.rectangle = rectangleAt(in, at + 20);
    }
    const std::size_t count =
        readCharacters(in, in.u32(at + 12), in.u32(at + 8), width, options, text);
    readAdvances(in, in.u32(at + 36), count, options, text);
    return text;
}

Text readSmallText(const imaging::ByteReader& in) {
    Text text;
    text.transform = transformOf(in.u32(24));
    text.reference = pointAt(in, 8);
    const std::uint32_t options = in.u32(20);
    applyOptions(options, text);
    std::size_t at = 36;
    if ((options & NoRectangle) == 0) {
        if ((options & (Opaque | Clipped)) != 0) {
            text.rectangle = rectangleAt(in, at);
        }
        at += 16;
    }
    const auto width =
        (options & SmallCharacters) != 0 ? CharacterWidth::Byte : CharacterWidth::Unit;
    if (width == CharacterWidth::Byte && (options & GlyphIndex) == 0) {
        // The lower halves of UTF-16 units, whatever the font.
        const std::size_t count = std::min<std::size_t>(in.u32(16), in.rest(at).size());
        const auto bytes = in.part(at, count);
        text.characters = QString::fromLatin1(reinterpret_cast<const char*>(bytes.data()),
                                              static_cast<qsizetype>(bytes.size()));
        return text;
    }
    readCharacters(in, at, in.u32(16), width, options, text);
    return text;
}

} // namespace

bool readEmfText(const EmfRecord& record, EmfReading& reading) {
    constexpr std::size_t kDescription = 40;
    const imaging::ByteReader& in = record.in;
    const bool wide = record.type == ExtTextOutW || record.type == PolyTextOutW;
    const auto width = wide ? CharacterWidth::Unit : CharacterWidth::Byte;
    switch (record.type) {
    case ExtTextOutA:
    case ExtTextOutW:
        reading.sink.take(readText(in, 36, width, transformOf(in.u32(24))));
        return true;
    case PolyTextOutA:
    case PolyTextOutW: {
        std::size_t at = 40;
        for (std::uint32_t left = in.u32(36); left > 0 && in.has(at, kDescription); --left) {
            reading.sink.take(readText(in, at, width, transformOf(in.u32(24))));
            at += kDescription;
        }
        return true;
    }
    case SmallTextOut:
        reading.sink.take(readSmallText(in));
        return true;
    default:
        return false;
    }
}

} // namespace metafile
