// The changes that commands let the user take back.
#pragma once

#include "commands/undo_history.h"
#include "store/group_trash.h"
#include "store/picture_trash.h"

#include <vector>

namespace commands {

UndoStep picturesDeleted(const store::GroupAddress& group,
                         std::vector<store::TrashedPicture> deleted);
// What has taken their places goes to the trash when they come back.
UndoStep picturesReplaced(const store::GroupAddress& group,
                          std::vector<store::TrashedPicture> replaced);
UndoStep pictureRenamed(const store::GroupAddress& group, const store::PictureName& from,
                        const store::PictureName& to);
UndoStep groupDeleted(store::TrashedGroup deleted);

// `before` and `after` are the group's addresses. A group that is called otherwise by then is not
// renamed: somebody else has done that, or another group has got the storage of one that is gone.
UndoStep groupRenamed(const store::GroupAddress& before, const store::GroupName& from,
                      const store::GroupAddress& after, const store::GroupName& to);

} // namespace commands
