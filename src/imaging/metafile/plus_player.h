// Plays the EMF+ half of an EMF file. EMF+ records lie in comments of the file, a comment holding
// any number of them; they have a state of their own (objects, world and page transform, clip,
// containers) that shares nothing with the device context of the other records but the sheet.
// Source: [MS-EMFPLUS].
#pragma once

#include "imaging/metafile/canvas.h"

#include <cstddef>
#include <memory>
#include <span>

namespace imaging::metafile {

class PlusPlayer {
  public:
    // The canvas must outlive the player.
    explicit PlusPlayer(Canvas& canvas);
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

// What a first look at a file's EMF+ comments tells.
class PlusSurvey {
  public:
    // One comment's data, in the file's order.
    void look(std::span<const std::byte> comment);

    bool found() const { return found_; }
    // The file can be drawn without its EMF+ half.
    bool isDual() const { return dual_; }
    // The EMF+ half holds what the other half can only approximate (colours with alpha, gradients,
    // pictures with alpha) and nothing that we cannot draw.
    bool drawsBetter() const { return better_ && !unknown_; }

  private:
    bool found_ = false;
    bool dual_ = false;
    bool better_ = false;
    bool unknown_ = false;
};

} // namespace imaging::metafile
