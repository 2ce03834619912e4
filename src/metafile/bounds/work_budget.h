// How much work one metafile may cause. Files tell how often and how large to draw, so a small
// hostile one could keep the program busy for hours: whoever draws spends from a budget first, and
// a spent budget ends the drawing with what is there by then.
//
// Belongs to one drawing, and so to one thread.
#pragma once

#include "metafile/bounds/kept_pictures.h"

#include <cstddef>
#include <cstdint>

namespace metafile {

// Thrown by WorkBudget; the picture drawn so far stays.
struct WorkExhausted {};

// Seconds of work done by the calling thread since some fixed moment.
using WorkClock = double (*)();

class WorkBudget {
  public:
    explicit WorkBudget(WorkClock clock);

    // One record read and played.
    void spendRecord() { spend(kRecordCost); }

    // Points, edges or glyphs to draw.
    void spendPoints(std::size_t count) { spend(count * kPointCost); }

    // Pixels to write, of the target or of a picture on its way there.
    void spendPixels(double count);

    // For work that cannot be told in numbers before, after it was done.
    void lookAtClock();

    // The pictures that the file's objects hold.
    KeptPictures& pictures() { return pictures_; }

    // Metafiles may hold metafiles: lives while one is played inside another. WorkExhausted when
    // there are too many around it.
    class Nesting {
      public:
        explicit Nesting(WorkBudget& budget);
        ~Nesting();
        Nesting(const Nesting&) = delete;
        Nesting& operator=(const Nesting&) = delete;

      private:
        WorkBudget& budget_;
    };

  private:
    void spend(std::uint64_t units);
    [[noreturn]] void giveUp(); // once and for all

    static constexpr std::uint64_t kRecordCost = 20;
    static constexpr std::uint64_t kPointCost = 40;

    std::uint64_t left_;
    std::uint64_t untilClock_ = 0; // units left when the clock is looked at next
    WorkClock clock_;
    double started_;
    int depth_ = 0;
    KeptPictures pictures_;
};

} // namespace metafile
