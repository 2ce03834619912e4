// The desktop's trash for what the library throws away.
#pragma once

#include "compound/trash.h"
#include "platform/temporary_folder.h"

#include <optional>

namespace platform {

// See trash.h. Files on their way there lie on the volume of the user's data, so that they come to
// the user's own trash whatever the library lies on.
class DesktopTrash final : public compound::Trash {
  public:
    // Made when it is first asked for; a TrashFailure names the folder that cannot hold it.
    std::filesystem::path stagingFolder() const override;
    std::filesystem::path moveThere(const std::filesystem::path& file) override;
    void takeBack(const std::filesystem::path& trashed, const std::filesystem::path& to) override;

  private:
    // Goes with the object, with what is left in it; that of a killed program with the next one.
    mutable std::optional<TemporaryFolder> folder_;
};

} // namespace platform
