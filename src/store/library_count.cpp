#include "store/library_count.h"

#include "compound/error.h"
#include "store/library_walk.h"
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

// Into `result`, unless the file cannot be read to its end. Whether it was there.
bool countFile(const Library& library, const FileName& file, const LockBudget& budget,
               std::optional<std::uint64_t>& result) {
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
        result = count;
    } catch (const compound::Error& error) {
        return error.code() != compound::ErrorCode::NotFound;
    }
    return true;
}

} // namespace

LibraryCount countLibrary(const Library& library, const LockBudget& budget) {
    LibraryCount total;
    const auto counts = readEachGroupFile<std::optional<std::uint64_t>>(
        library, [&](const FileName& file, std::size_t, std::optional<std::uint64_t>& count) {
            return countFile(library, file, budget, count);
        });
    for (const std::optional<std::uint64_t>& elements : counts) {
        if (elements) {
            ++total.groupFiles;
            total.elements += *elements;
        }
    }
    return total;
}

} // namespace store
