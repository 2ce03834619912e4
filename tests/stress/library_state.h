// What one worker has in a library that several share, and the operations that change it.
#pragma once

#include "store/group_operations.h"

#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace stress {

enum class Action : std::uint8_t {
    Add, // or replace
    AddBatch,
    RenamePicture,
    DeletePicture,
    CreateSubGroup,
    DeleteSubGroup,
    CreateFile, // a top-level group of the worker's own
    RenameFile,
    RemoveFile,
    Compact,
    Look,
};

struct Operation {
    Action action = Action::Look;
    std::uint32_t group = 0;   // of the shared file, or kOwnFile
    std::uint32_t picture = 0; // numbers stand for names
    std::uint32_t other = 0;   // the picture's new name
    std::uint32_t version = 0; // tells one content from another
};

inline constexpr std::uint32_t kSharedGroups = 3;
inline constexpr std::uint32_t kOwnFile = kSharedGroups;

// Everything that carries the worker's name: a picture -> its version, a group -> where it is.
using State = std::map<std::string, std::uint32_t>;

// One worker's view of a library. What it throws, other than compound::Error, is a fault: a picture
// that is not as any worker has written it, a file found damaged.
class Share {
  public:
    Share(store::Library library, std::filesystem::path sources, std::uint32_t worker)
        : library_(std::move(library)), sources_(std::move(sources)), worker_(worker) {}

    // One that `state` allows.
    static Operation choose(const State& state, std::mt19937& random);
    static void apply(const Operation& operation, State& state);

    void run(const Operation& operation) const;

    // Reads all files and groups, and all pictures of those that are shared; gives the worker's
    // part.
    State read() const;

  private:
    std::vector<store::FileName> files() const;
    std::filesystem::path source(const Operation& operation, std::uint32_t picture) const;
    store::GroupAddress addressOf(std::uint32_t group) const;
    std::u16string ownFile(std::uint32_t which) const;
    std::u16string subGroupName() const;
    store::GroupAddress subGroup() const;
    std::vector<store::GroupEntry> groupsOf(const store::FileName& file) const;
    void readPictures(const store::GroupAddress& address, std::uint32_t group, State& state) const;

    store::Library library_;
    std::filesystem::path sources_;
    std::uint32_t worker_;
};

// The file that all workers share, with its groups.
void prepare(const store::Library& library);

store::Library libraryIn(const std::filesystem::path& folder);

} // namespace stress
