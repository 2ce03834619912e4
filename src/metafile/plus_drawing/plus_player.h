// Plays the EMF+ half of an EMF file. EMF+ records lie in comments of the file, a comment holding
// any number of them; they have a state of their own (objects, world and page transform, clip,
// containers) that shares nothing with the device context of the other records but the sheet.
// Source: [MS-EMFPLUS].
#pragma once

#include "metafile/drawing/canvas.h"
#include "metafile/drawing/nested_metafiles.h"

#include <cstddef>
#include <memory>
#include <span>

namespace metafile {

class PlusPlayer {
  public:
    // Canvas and nested metafiles must outlive the player.
    PlusPlayer(Canvas& canvas, const NestedMetafiles& nested);
    ~PlusPlayer();
    PlusPlayer(const PlusPlayer&) = delete;
    PlusPlayer& operator=(const PlusPlayer&) = delete;

    // Plays one comment's data, after the "EMF+" identifier. A record that cannot be read is left
    // out. Throws WorkExhausted, and DecodeError when there is no memory, and nothing else.
    void play(std::span<const std::byte> comment);

    // Whether the other records that follow belong to this half: those between a GetDC record and
    // the next comment do.
    bool wantsDeviceRecords() const;

  private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace metafile
