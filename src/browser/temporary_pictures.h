// The temporary picture files that windows hand to each other.
#pragma once

#include <filesystem>

namespace browser {

// Removes the files named "Picture", "EditPicture" and "UndoPicture" with a picture type as
// extension, whatever the case of their letters. Missing ones are no error, links are not followed,
// and what cannot be removed stays.
void removeTemporaryPictures(const std::filesystem::path& folder);

} // namespace browser
