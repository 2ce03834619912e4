// Keeps free sectors in a row where directory, mini stream and mini FAT find new places, so that
// what the next transaction writes lies in one piece: pages that change now and then scatter what
// is free among those that do not, and a sync is dear by the pieces that it brings to the medium.
#pragma once

#include "compound/allocation_table.h"
#include "compound/mini_stream.h"
#include "compound/sector_chain.h"

namespace compound {

class HomeTidying {
  public:
    // Parts of one file and its transaction.
    HomeTidying(AllocationTable& table, SectorChain& directoryChain, MiniStream& mini)
        : table_(table), directoryChain_(directoryChain), mini_(mini) {}

    // Part of the transaction, before its chains are written out. When only short runs will be free
    // in the chains' home, a part of it that is half empty is cleared: the pages there are written
    // together with the transaction's own. A home that is nearly full is left for a range with
    // room.
    void run();

  private:
    AllocationTable& table_;
    SectorChain& directoryChain_;
    MiniStream& mini_;
};

} // namespace compound
