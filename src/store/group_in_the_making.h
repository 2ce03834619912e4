// A group that comes into being together with its pictures, in one transaction: until commit()
// nobody sees anything of it, and without commit() nothing of it stays behind.
#pragma once

#include "store/group_operations.h"
#include "store/picture_source.h"

#include <memory>
#include <optional>

namespace store {

class GroupInTheMaking {
  public:
    // Without `parent` a top-level group, in a new file, otherwise a sub-group of it; then the
    // parent's file stays locked until commit() or destruction. InvalidName, Exists, NotFound for
    // the parent.
    // Replace puts an existing file of the same name into the trash, at commit().
    GroupInTheMaking(const Library& library, const std::optional<GroupAddress>& parent,
                     const GroupName& name, IfTaken ifTaken = IfTaken::Refuse);
    ~GroupInTheMaking();
    GroupInTheMaking(const GroupInTheMaking&) = delete;
    GroupInTheMaking& operator=(const GroupInTheMaking&) = delete;

    // Where the group is going to lie.
    const GroupAddress& address() const;

    // The group file, for messages.
    const std::filesystem::path& path() const;

    // A picture of the same name, in any case, is replaced. InvalidName; then, and only then, the
    // group can go on. After any other failure (NoSpace, ...) it can only be dropped.
    void add(const PictureName& name, const PictureSource& source);

    // Exists when a file has got the name meanwhile. OutcomeUnknown when the group is there, but
    // perhaps only until the next power cut. When the file to be replaced is in the trash already
    // and the new one cannot take its place, the error's cause says so.
    void commit();

  private:
    struct State;
    void beginFile(const GroupName& name, IfTaken ifTaken);
    void replaceFile();
    void beginBelow(const GroupAddress& parent, const GroupName& name);

    std::unique_ptr<State> state_;
};

} // namespace store
