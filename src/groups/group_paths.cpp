#include "groups/group_paths.h"

namespace groups {

GroupPaths pathsOf(std::span<const store::GroupEntry> groups) {
    GroupPaths paths;
    for (const store::GroupEntry& group : groups) {
        const QString name = QString::fromStdU16String(group.name.text);
        const auto above = paths.find(group.parent.text);
        paths[group.address.storage.text] =
            above == paths.end() ? name : above->second + QLatin1String(" / ") + name;
    }
    return paths;
}

} // namespace groups
