#include "store/address.h"

namespace store {

std::u16string keyOf(const GroupAddress& address) {
    return address.storage.text + u"/" + address.file.text;
}

GroupAddress addressOf(std::u16string_view key) {
    const std::size_t slash = key.find(u'/');
    if (slash == std::u16string_view::npos) {
        return topLevelAddress(key);
    }
    return {FileName{std::u16string(key.substr(slash + 1))},
            StorageName{std::u16string(key.substr(0, slash))}};
}

GroupAddress topLevelAddress(std::u16string_view name) {
    return {FileName{std::u16string(name)}, StorageName{std::u16string(name)}};
}

GroupAddress inRenamedFile(const GroupAddress& group, const FileName& file) {
    return group == topLevelAddress(group.file.text) ? topLevelAddress(file.text)
                                                     : GroupAddress{file, group.storage};
}

} // namespace store
