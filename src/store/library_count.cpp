#include "store/library_count.h"

#include "compound/error.h"
#include "store/names.h"
#include "store/storage_access.h"

#include <optional>

namespace store {
namespace {

using compound::Access;
using compound::Element;
using compound::ElementKind;

std::uint64_t countStreams(const StorageHandle& storage) {
    std::uint64_t count = 0;
    compound::ElementCursor cursor = storage.elements();
    Element element;
    while (cursor.next(element)) {
        if (element.kind == ElementKind::Stream && !isGroupText(element.name)) {
            ++count;
        }
    }
    return count;
}

// Nothing for a file that cannot be read to its end.
std::optional<std::uint64_t> countFile(const Library& library, const FileName& file,
                                       const LockBudget& budget) {
    try {
        StorageAccess access(library);
        access.openFile(pathOf(library, file), Access::Read, budget.remaining());
        std::uint64_t count = 0;
        compound::ElementCursor cursor = access.root().elements();
        Element element;
        while (cursor.next(element)) {
            if (element.kind == ElementKind::Storage) {
                count += countStreams(access.root().OpenStorage(element.name));
            }
        }
        return count;
    } catch (const compound::Error&) {
        return std::nullopt;
    }
}

} // namespace

LibraryCount countLibrary(const Library& library, const LockBudget& budget) {
    LibraryCount total;
    for (const FileName& file : groupFiles(library)) {
        if (const auto elements = countFile(library, file, budget)) {
            ++total.groupFiles;
            total.elements += *elements;
        }
    }
    return total;
}

} // namespace store
