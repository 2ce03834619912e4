#include "imaging/metafile/plus_fields.h"
#include "imaging/metafile/plus_images.h"
#include "imaging/metafile/plus_player.h"
#include "imaging/metafile/plus_reader.h"

namespace imaging::metafile {

namespace {

constexpr std::uint16_t kHeader = 0x4001;
constexpr std::uint16_t kObject = 0x4008;
constexpr std::uint16_t kLastKnown = 0x4039;
constexpr unsigned kIsColour = 0x8000;

bool isSolid(std::uint32_t colour) {
    return qAlpha(colour) == 255;
}

// Brushes that the other half has to take apart into many little shapes, or to leave out.
bool isRichBrush(std::span<const std::byte> data) {
    constexpr std::uint32_t kSolid = 0;
    constexpr std::uint32_t kHatch = 1;
    PlusCursor in(data);
    in.u32();
    const std::uint32_t type = in.u32();
    return type == kSolid ? !isSolid(in.colour()) : type != kHatch;
}

bool isRichObject(std::uint16_t flags, std::span<const std::byte> data) {
    constexpr unsigned kBrush = 1;
    constexpr unsigned kImage = 5;
    constexpr unsigned kContinues = 0x8000;
    const unsigned type = flags >> 8U & 0x7FU;
    if ((flags & kContinues) != 0)
        data = data.subspan(std::min<std::size_t>(4, data.size()));
    if (type == kBrush)
        return isRichBrush(data);
    return type == kImage && plusImageHasAlpha(data);
}

// Fills that name their colour themselves.
bool isFill(std::uint16_t type) {
    return type == 0x400A || type == 0x400C || type == 0x400E || type == 0x4010 || type == 0x4013 ||
           type == 0x4014 || type == 0x4016;
}

} // namespace

void PlusSurvey::look(std::span<const std::byte> comment) {
    const bool followed = forEachPlusRecord(
        comment, [&](std::uint16_t type, std::uint16_t flags, std::span<const std::byte> data) {
            found_ = true;
            if (type == kHeader)
                dual_ = (flags & 1U) != 0;
            if (type > kLastKnown)
                unknown_ = true;
            try {
                if (type == kObject)
                    better_ = better_ || isRichObject(flags, data);
                if (isFill(type) && (flags & kIsColour) != 0)
                    better_ = better_ || !isSolid(PlusCursor(data).u32());
            } catch (const DecodeError&) {
                // Too short to tell; what follows in the next comment belongs to it.
                return;
            }
        });
    unknown_ = unknown_ || !followed;
}

} // namespace imaging::metafile
