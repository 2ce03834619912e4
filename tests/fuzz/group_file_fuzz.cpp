// Opens arbitrary bytes as a group file, reads all that can be read, and changes it.
#include "compound/error.h"
#include "compound/memory_disk.h"
#include "store/damaged_groups.h"
#include "store/picture_operations.h"

#include <cstdint>

namespace {

void readAll(const store::Library& library) {
    const store::LockBudget budget(std::chrono::milliseconds{0});
    for (const store::GroupEntry& group :
         store::readGroupFile(library, {u"Group"}, budget).groups) {
        try {
            for (const store::PictureEntry& picture : store::listPictures(library, group.address)) {
                (void)store::readPicture(library, group.address, picture.name);
            }
        } catch (const compound::Error&) {
            continue;
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MemoryDisk disk;
    disk.makeFolder("/library");
    disk.setContent("/library/Group.stg", std::as_bytes(std::span(data, size)));
    const store::Library library{disk, "/library", {}};
    readAll(library);
    try {
        store::createGroup(library, store::topLevelAddress(u"Group"), {u"New"});
    } catch (const compound::Error&) {
        return 0;
    }
    readAll(library);
    return 0;
}
