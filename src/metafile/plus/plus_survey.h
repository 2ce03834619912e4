// Which half of an EMF file with EMF+ records is the better one to play.
#pragma once

#include <cstddef>
#include <span>

namespace metafile {

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

} // namespace metafile
