// Adding, finding, reading, renaming and removing pictures. See library.h for errors and
// transactions.
//
// A picture is a stream of the group storage with the file's bytes, unchanged, and a record stream
// of the same name in the info storage. Names compare without regard to case; `Name` and `Parent`
// are the group's own streams and never a picture's.
#pragma once

#include "base/bytes.h"
#include "store/library.h"
#include "store/picture_record.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace store {

enum class IfPictureExists { Refuse, Replace };

// Larger pictures are refused with TooLarge before they are read. The largest that can be decoded,
// 40 million pixels of 32 bits, takes less.
inline constexpr std::uint64_t kMaximumPictureBytes = std::uint64_t{168} << 20U;

// The whole content of a picture file. TooLarge; Failed for one that grows or shrinks meanwhile,
// since another program is still writing it.
base::Bytes readPictureFile(compound::Disk& disk, const std::filesystem::path& path);

// Writes a picture file that windows hand to each other: an earlier file of that name is replaced,
// a link of that name is never followed, and what cannot be written whole is removed.
void writePictureFile(compound::Disk& disk, const std::filesystem::path& path,
                      std::span<const std::byte> bytes);

// Reads, measures and stores a picture file. Everything that can fail for the picture's sake is
// done before the group file is touched. Exists (in any case for a name that a storage of another
// program bears), InvalidName, InvalidPicture, TooLarge.
void addPicture(const Library& library, const GroupAddress& group, const PictureName& name,
                const std::filesystem::path& source,
                IfPictureExists ifExists = IfPictureExists::Replace);

// Several pictures in one transaction: all of them or none. The group file stays locked from the
// construction until commit() or destruction; destruction without commit() changes nothing.
class PictureBatch {
  public:
    PictureBatch(const Library& library, const GroupAddress& group);
    ~PictureBatch();
    PictureBatch(const PictureBatch&) = delete;
    PictureBatch& operator=(const PictureBatch&) = delete;

    // As addPicture. After an exception the batch is as before the call, unless the disk fails in
    // the middle (Failed): then commit() refuses, and nothing of the batch is stored.
    void add(const PictureName& name, const std::filesystem::path& source,
             IfPictureExists ifExists);
    void commit();

  private:
    struct State;
    std::unique_ptr<State> state_;
};

// Whether a stream of that name could be created in the group. True for a picture that exists.
// Never throws and changes nothing.
bool testPictureName(const Library& library, const GroupAddress& group,
                     const PictureName& name) noexcept;

// The picture's name as the group spells it; nothing when there is no such picture. Without regard
// to case; `Name` and `Parent` never are pictures.
std::optional<PictureName> findPicture(const Library& library, const GroupAddress& group,
                                       const PictureName& name);

// Without regard to case; always true for `Name` and `Parent`.
bool pictureExists(const Library& library, const GroupAddress& group, const PictureName& name);

struct PictureEntry {
    PictureName name;
    std::uint64_t bytes = 0;
    PictureRecord record;
};

// All pictures of a group in the fixed order of its storage.
std::vector<PictureEntry> listPictures(const Library& library, const GroupAddress& group);

// The first of them without looking at the others; nothing when there is none.
std::optional<PictureEntry> firstPicture(const Library& library, const GroupAddress& group);

// One of them, as the group spells it. NotFound.
PictureEntry describePicture(const Library& library, const GroupAddress& group,
                             const PictureName& name);

// Tells one state of a group file from every other that any program may have written.
struct FileStamp {
    compound::FileIdentity identity;
    std::uint32_t transaction = 0;

    bool isSameStateAs(const FileStamp& other) const {
        return identity.isSameStateAs(other.identity) && transaction == other.transaction;
    }
};

struct PictureNames {
    std::vector<std::size_t> elements; // the element indexes of the group's pictures, ascending
    std::vector<PictureName> names;    // of the same pictures
    // Nothing when the disk cannot tell states apart, or when the file was changed so lately that
    // a further change might not show.
    std::optional<FileStamp> stamp;
    // The same however lately it was changed; a further change shows unless it comes at once and
    // from a program that does not count transactions.
    std::optional<FileStamp> latest;
};
PictureNames listPictureNames(const Library& library, const GroupAddress& group);

struct StoredPicture {
    PictureName name; // as stored
    PictureRecord record;
    base::Bytes bytes;
};

StoredPicture readPicture(const Library& library, const GroupAddress& group,
                          const PictureName& name);

// The type code of the record; empty when there is none.
std::string readPictureType(const Library& library, const GroupAddress& group,
                            const PictureName& name);

// Walks the elements of the group storage from the element index `start` on (`Name` and `Parent`
// count as elements, but are not delivered) and hands each picture to `take`, until take returns
// TakePicture::Stop or the elements end. A picture with damaged or too many bytes is handed over
// without any.
enum class TakePicture { Continue, Stop };
void walkPictures(const Library& library, const GroupAddress& group, std::size_t start,
                  const std::function<TakePicture(const StoredPicture&)>& take);

// The bytes of several pictures in one opening of the file, in the order of the names. Before one
// is read, `wanted` is asked with its size in bytes, and ends the reading by TakePicture::Stop. A
// picture that is not there, or has damaged or too many bytes, is handed over without any.
void readPictures(const Library& library, const GroupAddress& group,
                  std::span<const PictureName> names,
                  const std::function<TakePicture(std::uint64_t)>& wanted,
                  const std::function<void(base::Bytes)>& take);

// Where a picture stands.
struct PicturePlace {
    std::size_t element = 0; // the index of its element in the group storage
    // The picture behind it, or, if it is the last one, the one before it; nothing if it is alone.
    std::optional<PictureName> beside;
};
// Without regard to case; nothing when there is no such picture.
std::optional<PicturePlace> placeOfPicture(const Library& library, const GroupAddress& group,
                                           const PictureName& name);

// Renames stream and record. Exists when another picture, or another program's storage where the
// record goes, has the new name in any case; InvalidName, NotFound. A missing record is no error; a
// stale one under the new name is replaced.
void renamePicture(const Library& library, const GroupAddress& group, const PictureName& from,
                   const PictureName& to);

// Removes stream and record; an empty name does nothing, a missing record is no error.
void deletePicture(const Library& library, const GroupAddress& group, const PictureName& name);

// Writes the picture's bytes to FOLDER/BASE.TYPE (type code in upper case) by writePictureFile and
// returns that path. A base name that could lead out of the folder is InvalidName: a picture's own
// name, which another program may have written, is none to pass as it is.
std::filesystem::path exportPicture(const Library& library, const GroupAddress& group,
                                    const PictureName& name, const std::filesystem::path& folder,
                                    const std::string& baseName);

// The same with a picture that was read already.
std::filesystem::path exportPicture(const Library& library, const StoredPicture& picture,
                                    const std::filesystem::path& folder,
                                    const std::string& baseName);

} // namespace store
