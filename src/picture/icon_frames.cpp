#include "picture/icon_frames.h"

#include "imaging/decoders.h"
#include "imaging/icon_directory.h"

#include <algorithm>

namespace picture {
namespace {

constexpr std::size_t kMostFrames = 256;
constexpr qint64 kMostPixels = 16'000'000; // of all frames together

IconFrame described(const imaging::IconFrame& frame, imaging::PictureKind kind) {
    IconFrame result{frame.size, frame.bitsPerPixel, {}, false, {}};
    if (kind == imaging::PictureKind::Cur) {
        result.hotSpot = imaging::hotSpotWithin(frame);
    }
    return result;
}

} // namespace

std::vector<IconFrame> iconFrames(std::span<const std::byte> bytes) {
    std::vector<IconFrame> frames;
    try {
        const auto kind = imaging::sniff(bytes);
        if (kind != imaging::PictureKind::Ico && kind != imaging::PictureKind::Cur) {
            return {};
        }
        imaging::IconDirectory icon = imaging::readIconDirectory(bytes);
        const std::size_t shown = imaging::decodeShownFrame(icon).frame.entry;
        std::sort(icon.frames.begin(), icon.frames.end(),
                  [](const auto& one, const auto& other) { return one.entry < other.entry; });
        qint64 pixels = 0;
        for (const imaging::IconFrame& frame : icon.frames) {
            if (frames.size() == kMostFrames) {
                break;
            }
            IconFrame& result = frames.emplace_back(described(frame, icon.kind));
            result.isShown = frame.entry == shown;
            pixels += frame.area();
            try {
                result.image = pixels <= kMostPixels ? imaging::decodeFrame(frame) : QImage();
            } catch (const imaging::DecodeError&) {
                result.image = {};
            }
        }
    } catch (const imaging::DecodeError&) {
        frames.clear();
    }
    return frames;
}

} // namespace picture
