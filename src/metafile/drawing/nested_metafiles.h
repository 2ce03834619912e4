// What a metafile needs to show another one that it holds: the player of whole files, as the
// painters below it see it.
#pragma once

#include "metafile/bounds/work_budget.h"

#include <QImage>
#include <QRectF>

#include <cstddef>
#include <span>

namespace metafile {

class NestedMetafiles {
  public:
    virtual ~NestedMetafiles() = default;
    NestedMetafiles(const NestedMetafiles&) = delete;
    NestedMetafiles& operator=(const NestedMetafiles&) = delete;

    // The rectangle that the bytes say they show, in the pixels or units that records count its
    // parts in; null when they do not say. DecodeError when the header cannot be read.
    virtual QRectF frameOf(std::span<const std::byte> bytes) const = 0;

    // The whole picture, stretched to `size` pixels, on the budget of the metafile around it. As
    // far as it can be read; DecodeError when its header cannot be read or there is no memory.
    virtual QImage draw(std::span<const std::byte> bytes, QSize size, WorkBudget& budget) const = 0;

  protected:
    NestedMetafiles() = default;
};

} // namespace metafile
