// What groups are called together with the groups above them.
#pragma once

#include "store/group_operations.h"

#include <QString>

#include <map>
#include <span>
#include <string>

namespace groups {

// "Pumps / Rotary", by the storage of each group.
using GroupPaths = std::map<std::u16string, QString>;

// Of the groups of one file, every parent before its children.
GroupPaths pathsOf(std::span<const store::GroupEntry> groups);

} // namespace groups
