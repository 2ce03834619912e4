// A group file in the making: written under a temporary name that no listing takes for a group
// file, and given its real name only when it is complete and durable. Errors name the target, the
// only file that the user knows of.
#pragma once

#include "compound/compound_file.h"
#include "store/library.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace store {

class NewGroupFile {
  public:
    // What is copied from another file has that file's readers, and until it is given them none.
    enum class Content { Fresh, Copied };

    // Creates and locks the temporary file beside `target`, which is no link (Disk::resolved).
    // Temporary files that crashed programs have left in the folder are removed.
    NewGroupFile(const Library& library, std::filesystem::path target, Content content,
                 compound::SectorSize sectorSize = compound::SectorSize::Bytes4096);
    ~NewGroupFile(); // removes the temporary file unless it was published
    NewGroupFile(const NewGroupFile&) = delete;
    NewGroupFile& operator=(const NewGroupFile&) = delete;

    // Hands the file to `build`, which puts content into it.
    void write(const std::function<void(compound::CompoundFile&)>& build);

    // Gives the file the attributes of `old`, once the content is there.
    void takeAttributes(compound::DiskFile& old);

    // Makes the content durable under the temporary name.
    void prepare();

    // Bytes of what was prepared.
    std::uint64_t size() { return file_->disk().size(); }

    // Commits, and gives the file its name. Exists (and nothing changed) when the name is taken;
    // OutcomeUnknown when the file bears the name, but only until the next power cut perhaps.
    void publish();

    // As publish, but atomically takes the place of the file that is there.
    void publishReplacing();

    bool isPublished() const { return published_; }

    // Where it is until it is published.
    const std::filesystem::path& temporary() const { return temporary_; }

  private:
    void create(Content content, compound::SectorSize sectorSize);
    std::unique_ptr<compound::DiskFile> createLocked(const std::filesystem::path& folder,
                                                     Content content);
    std::unique_ptr<compound::DiskFile> lockOrRemove(std::unique_ptr<compound::DiskFile> created);
    void give(const std::function<void()>& rename);
    void tellOfTarget(const std::function<void()>& action) const;

    const Library& library_;
    std::filesystem::path target_;
    std::filesystem::path temporary_;
    std::optional<compound::CompoundFile> file_;
    bool published_ = false;
};

} // namespace store
