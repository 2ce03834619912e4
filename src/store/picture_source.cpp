#include "store/picture_source.h"

#include "base/utf8.h"
#include "compound/error.h"
#include "store/names.h"
#include "store/picture_operations.h"

#include <exception>

namespace store {

using compound::Error;
using compound::ErrorCode;

base::Bytes readPictureFile(compound::Disk& disk, const std::filesystem::path& path) {
    const auto file = disk.open(path, compound::Access::Read);
    const std::uint64_t size = file->size();
    if (size > kMaximumPictureBytes) {
        throw Error(ErrorCode::TooLarge, path, "the file is too large for a picture");
    }
    base::Bytes bytes(static_cast<std::size_t>(size));
    const std::size_t read = file->read(0, bytes);
    if (read != size || file->size() != size) {
        throw Error(ErrorCode::Failed, path, "the file changes while it is read");
    }
    return bytes;
}

PictureSource readPictureSource(const Library& library, const std::filesystem::path& path) {
    PictureSource source;
    source.bytes = readPictureFile(library.disk, path);
    try {
        source.record =
            recordOf(library.measure(source.bytes), typeCodeOf(base::fromPath(path.filename())));
    } catch (const std::exception& error) {
        throw Error(ErrorCode::InvalidPicture, path, error.what());
    }
    return source;
}

void requireValidPictureName(const std::filesystem::path& file, const PictureName& name) {
    if (!isValidPictureName(name.text)) {
        throw Error(ErrorCode::InvalidName, file,
                    "\"" + base::toUtf8(name.text) + "\" cannot be a picture's name");
    }
}

bool isBarred(const StorageHandle& group, const StorageHandle& info, const PictureName& name) {
    return group.holdsStorage(name.text) || info.holdsStorage(name.text);
}

void putPicture(const Library& library, StorageHandle group, StorageHandle info,
                const PictureName& name, const PictureSource& source) {
    group.CreateStream(name.text).Put(source.bytes);
    info.CreateStream(name.text).PutString(formatRecord(source.record, library.decimalSeparator));
}

} // namespace store
