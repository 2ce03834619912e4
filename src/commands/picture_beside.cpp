#include "commands/picture_beside.h"

#include "store/names.h"
#include "store/picture_operations.h"

#include <set>
#include <string>

namespace commands {

std::optional<store::PictureName> besideThese(const store::Library& library,
                                              const store::GroupAddress& group,
                                              const std::vector<store::PictureName>& gone,
                                              const store::PictureName& shown) {
    std::set<std::u16string, store::ByName> goneNames;
    for (const store::PictureName& name : gone) {
        goneNames.insert(name.text);
    }
    std::optional<store::PictureName> before;
    bool isBehind = false;
    for (const store::PictureName& name : store::listPictureNames(library, group).names) {
        isBehind = isBehind || store::sameName(name.text, shown.text);
        if (goneNames.contains(name.text)) {
            continue;
        }
        if (isBehind) {
            return name;
        }
        before = name;
    }
    return before;
}

} // namespace commands
