#include "metafile/plus/plus_survey.h"

#include "metafile/plus/plus_fields.h"
#include "metafile/plus/plus_images.h"
#include "metafile/plus/plus_reader.h"

namespace metafile {

namespace {

constexpr std::uint16_t kHeader = 0x4001;
constexpr std::uint16_t kObject = 0x4008;
constexpr std::uint16_t kDrawDriverString = 0x4036;
constexpr std::uint16_t kStrokeFillPath = 0x4037;
constexpr std::uint16_t kSerializableObject = 0x4038; // an effect on the next image
constexpr std::uint16_t kLastKnown = 0x403A;
constexpr unsigned kIsColour = 0x8000;

// What the other half can only approximate; what cannot be seen it leaves out as well.
bool isTranslucent(std::uint32_t colour) {
    return qAlpha(colour) > 0 && qAlpha(colour) < 255;
}

// Brushes that the other half has to take apart into many little shapes, or to leave out.
bool isRichBrush(std::span<const std::byte> data) {
    constexpr std::uint32_t kSolid = 0;
    constexpr std::uint32_t kHatch = 1;
    PlusCursor in(data);
    in.u32();
    const std::uint32_t type = in.u32();
    return type == kSolid ? isTranslucent(in.colour()) : type != kHatch;
}

bool isRichObject(std::uint16_t flags, std::span<const std::byte> data) {
    constexpr unsigned kBrush = 1;
    constexpr unsigned kPen = 2;
    constexpr unsigned kImage = 5;
    constexpr unsigned kContinues = 0x8000;
    const unsigned type = flags >> 8U & 0x7FU;
    if ((flags & kContinues) != 0) {
        data = data.subspan(std::min<std::size_t>(4, data.size()));
    }
    if (type == kBrush) {
        return isRichBrush(data);
    }
    if (type == kPen) {
        const PlusObject object = readPlusObject(type, data);
        const auto* pen = std::get_if<PlusPen>(&object);
        return pen != nullptr && pen->brush.kind == PlusBrushKind::Solid &&
               isTranslucent(pen->brush.colour);
    }
    return type == kImage && plusImageHasAlpha(data);
}

// Fills that name their colour themselves.
bool isFill(std::uint16_t type) {
    return type == 0x400A || type == 0x400C || type == 0x400E || type == 0x4010 || type == 0x4013 ||
           type == 0x4014 || type == 0x4016;
}

// Records that cannot be drawn as they are meant, or only by luck.
bool isBeyondUs(std::uint16_t type, std::span<const std::byte> data) {
    if (type == kStrokeFillPath || type == kSerializableObject || type > kLastKnown) {
        return true;
    }
    if (type != kDrawDriverString) {
        return false;
    }
    constexpr unsigned kCharacters = 1; // else numbers of glyphs in a font that may not be here
    PlusCursor in(data);
    in.u32(); // brush
    return (in.u32() & kCharacters) == 0;
}

} // namespace

void PlusSurvey::look(std::span<const std::byte> comment) {
    const bool followed = forEachPlusRecord(
        comment, [&](std::uint16_t type, std::uint16_t flags, std::span<const std::byte> data) {
            found_ = true;
            if (type == kHeader) {
                dual_ = (flags & 1U) != 0;
            }
            try {
                unknown_ = unknown_ || isBeyondUs(type, data);
                if (type == kObject) {
                    better_ = better_ || isRichObject(flags, data);
                }
                if (isFill(type) && (flags & kIsColour) != 0) {
                    better_ = better_ || isTranslucent(PlusCursor(data).u32());
                }
            } catch (const imaging::DecodeError&) {
                // Too short to tell; what follows in the next comment belongs to it.
                return;
            }
        });
    unknown_ = unknown_ || !followed;
}

} // namespace metafile
