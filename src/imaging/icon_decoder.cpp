// Icons and cursors: the best frame that can be decoded.
#include "imaging/decoders.h"
#include "imaging/icon_directory.h"

namespace imaging {

namespace {

PictureFacts factsOf(const IconDirectory& icon, const IconFrame& frame) {
    PictureFacts facts = rasterFacts(icon.kind, frame.size, frame.bitsPerPixel);
    if (icon.kind == PictureKind::Cur) {
        facts.hotSpot = hotSpotWithin(frame);
    }
    return facts;
}

} // namespace

PictureFacts measureIcon(std::span<const std::byte> bytes) {
    const IconDirectory icon = readIconDirectory(bytes);
    return factsOf(icon, icon.frames.front());
}

RasterPicture decodeIcon(std::span<const std::byte> bytes) {
    const IconDirectory icon = readIconDirectory(bytes);
    const ShownFrame shown = decodeShownFrame(icon);
    return {factsOf(icon, shown.frame), shown.image};
}

} // namespace imaging
