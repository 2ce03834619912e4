#include "compound/home_tidying.h"

namespace compound {

void HomeTidying::run() {
    if (table_.leaveFullHome()) {
        const std::uint32_t first = directoryChain_.first();
        directoryChain_.leavePart({first, first + 1});
        return;
    }
    if (!table_.isHomeCrowded()) {
        return;
    }
    SectorSet pages;
    directoryChain_.addTo(pages);
    mini_.addTo(pages);
    if (const auto part = table_.emptiestPartOfHome(pages)) {
        directoryChain_.leavePart(*part);
        mini_.leavePart(*part);
        table_.leavePart(*part);
    }
}

} // namespace compound
