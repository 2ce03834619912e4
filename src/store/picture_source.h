// A picture file on its way into a group. What can fail for the picture's sake is done by reading
// it, before a group file is touched.
#pragma once

#include "base/bytes.h"
#include "store/library.h"
#include "store/picture_record.h"
#include "store/storage_access.h"

#include <cstddef>
#include <filesystem>

namespace store {

struct PictureSource {
    base::Bytes bytes;
    PictureRecord record;
};

// Reads and measures the file. TooLarge, InvalidPicture, and what the disk throws, each naming
// `path`.
PictureSource readPictureSource(const Library& library, const std::filesystem::path& path);

// InvalidName, naming the group file `file`.
void requireValidPictureName(const std::filesystem::path& file, const PictureName& name);

// Whether another program's storage stands where the picture or its record would. No picture takes
// its place.
bool isBarred(const StorageHandle& group, const StorageHandle& info, const PictureName& name);

// Stores bytes and record under `name`, which is not barred, in place of the picture that has that
// name, as part of the file's transaction.
void putPicture(const Library& library, StorageHandle group, StorageHandle info,
                const PictureName& name, const PictureSource& source);

} // namespace store
