// A group as a node of the tree stands for it.
#pragma once

#include "store/address.h"

#include <QString>

namespace groups {

struct SelectedGroup {
    store::GroupAddress address;
    store::StorageName parent; // the storage it hangs under; empty for a top-level group
    QString name;              // the node's text
    QString path;              // the names from the top level down to the group, for reading
};

} // namespace groups
