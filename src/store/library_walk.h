// Reading all group files one after the other, while other programs may rename and remove them.
#pragma once

#include "store/library.h"

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace store {

// Reads one file and returns whether it, and all that was looked for in it, was there. `listed`:
// how many there are.
using ReadListedFile = std::function<bool(const FileName& file, std::size_t listed)>;

// Has `read` look at every group file and returns the listing that this leads to. When one is not
// there any more the folder is listed again, what has come since is read, and what was not there
// once more. So a group that gets another name meanwhile is there once, under one of its names.
// What is listed and never there stays in the listing as it was read last. Throws when the folder
// cannot be listed, and what `read` throws.
std::vector<FileName> walkLibrary(const Library& library, const ReadListedFile& read);

// The same for what is read of each file, in the order of the listing: `read` gets a Value of its
// own to fill.
template <typename Value, typename Read>
std::vector<Value> readEachGroupFile(const Library& library, const Read& read) {
    std::map<std::u16string, Value> values;
    const auto files = walkLibrary(library, [&](const FileName& file, std::size_t listed) {
        Value value{};
        const bool isThere = read(file, listed, value);
        values.insert_or_assign(file.text, std::move(value));
        return isThere;
    });
    std::vector<Value> result;
    result.reserve(files.size());
    for (const FileName& file : files) {
        result.push_back(std::move(values.at(file.text)));
    }
    return result;
}

} // namespace store
