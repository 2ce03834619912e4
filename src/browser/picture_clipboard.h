// Pictures on the clipboard, for programs that take an image and for those that take a file.
#pragma once

#include "store/library.h"

#include <filesystem>

class QWidget;

namespace browser {

// Puts the picture on the clipboard: as an image (a metafile drawn at its own size), and as a copy
// of its file, which lies in a folder of its own in the temporary folder and is named like the
// picture as far as a file can be. Throws compound::Error when it cannot be read or written; one
// that cannot be decoded is copied as a file alone. The clipboard is as it was when it throws.
// While a large picture is decoded `owner` gets a window about it.
void copyToClipboard(const store::Library& library, const store::GroupAddress& group,
                     const store::PictureName& name, const std::filesystem::path& temporaryFolder,
                     QWidget* owner);

} // namespace browser
