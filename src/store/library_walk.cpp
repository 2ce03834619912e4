#include "store/library_walk.h"

#include <set>

namespace store {

std::vector<FileName> walkLibrary(const Library& library, const ReadListedFile& read) {
    constexpr int kMostListings = 5;
    std::vector<FileName> files = groupFiles(library);
    std::set<std::u16string> done;
    for (int listings = 1;; ++listings) {
        bool isComplete = true;
        for (const FileName& file : files) {
            if (done.contains(file.text)) {
                continue;
            }
            if (read(file, files.size())) {
                done.insert(file.text);
            } else {
                isComplete = false;
            }
        }
        if (isComplete || listings == kMostListings) {
            return files;
        }
        files = groupFilesAsTheyAre(library);
    }
}

} // namespace store
