// What a catalogue shows: a group, maybe with the groups below it, and their pictures.
#pragma once

#include "store/library.h"
#include "store/picture_operations.h"

#include <QString>

#include <cstdint>
#include <vector>

namespace catalogue {

enum class SubGroups { Included, LeftOut };

struct Section {
    store::GroupAddress group;
    QString name;
    QString path;  // the names from the top level down to the group, for reading
    QString below; // the same from the catalogue's own group on; that one's is its name
    std::vector<store::PictureEntry> pictures;
};

// The group first, each group before those below it. Pictures are listed, not read. Throws
// compound::Error, naming the group file: what cannot be listed makes no catalogue.
std::vector<Section> readContents(const store::Library& library, const store::GroupAddress& group,
                                  SubGroups subGroups);

// Bytes of all pictures together.
std::uint64_t bytesOf(const std::vector<Section>& contents);

} // namespace catalogue
