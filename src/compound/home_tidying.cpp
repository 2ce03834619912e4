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
    const Stretch home = table_.homeInside();
    SectorBits pages;
    directoryChain_.mark(home, pages);
    mini_.mark(home, pages);
    if (const auto part = table_.emptiestPart(pages)) {
        directoryChain_.leavePart(*part);
        mini_.leavePart(*part);
        table_.leavePart(*part);
    }
}

} // namespace compound
