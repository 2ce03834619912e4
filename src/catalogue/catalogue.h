// A catalogue of a group on paper: its pictures with names, sizes and types, below headings.
//
// May be called on any thread, one call at a time for one device.
#pragma once

#include "catalogue/contents.h"
#include "compound/error.h"
#include "platform/output_file.h"
#include "store/progress.h"

#include <cstddef>
#include <filesystem>
#include <vector>

class QPagedPaintDevice;

namespace catalogue {

enum class Paper { A4, Letter };

// The one that is usual where the user lives.
Paper usualPaper();

// A picture that has only its frame in the catalogue, and why.
struct Unshown {
    QString groupPath;
    QString picture;
    compound::Error failure; // names the group file
};

struct Printed {
    std::size_t pages = 0;
    std::vector<Unshown> unshown;
};

// Prints on a device that takes its pages from the sheet's corner on (without margins of its own).
// Cancelled when `progress` wants to stop; Failed when the device takes no more: `name` is what the
// error calls it. What is on the device then is for the caller to drop.
Printed print(const store::Library& library, const std::vector<Section>& contents,
              QPagedPaintDevice& device, const std::filesystem::path& name,
              store::Progress& progress = store::noProgress());

// Writes a PDF file. Nothing is left of it on a failure, and an earlier file is as it was.
Printed writePdf(const store::Library& library, const std::vector<Section>& contents, Paper paper,
                 const std::filesystem::path& file, platform::IfFileExists ifExists,
                 store::Progress& progress = store::noProgress());

} // namespace catalogue
