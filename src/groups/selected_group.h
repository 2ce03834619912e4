// Groups as the tree and those around it speak of them.
#pragma once

#include "store/address.h"

#include <QString>

namespace groups {

// A group as a node of the tree stands for it.
struct SelectedGroup {
    store::GroupAddress address;
    store::StorageName parent; // the storage it hangs under; empty for a top-level group
    QString name;              // the node's text
    QString path;              // the names from the top level down to the group, for reading
};

// A group whose file has got another name.
struct MovedGroup {
    store::GroupAddress from;
    store::GroupAddress to;
};

} // namespace groups
