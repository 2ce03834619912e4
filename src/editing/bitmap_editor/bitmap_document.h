// The picture that the bitmap editor works on: its copy among the temporary files, its pixels, its
// history, and how it is written for saving.
//
// Nothing here knows of windows or threads: one thread at a time uses a document, and every call
// may take as long as a large picture and a slow disk need.
#pragma once

#include "base/bytes.h"
#include "editing/bitmap_editor/history_stack.h"
#include "imaging/operations/edits.h"
#include "imaging/picture_facts.h"
#include "store/library.h"
#include "store/picture_operations.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace editing {

class BitmapDocument {
  public:
    using Edit = imaging::operations::Edit;
    using EditedPicture = imaging::operations::EditedPicture;

    // Writes the picture's file to FOLDER/EditPicture.TYPE and loads it; a metafile is drawn at its
    // own size on white paper. The library's disk must live as long as the document. Throws
    // compound::Error when the copy cannot be written, ImagingError (kCorrupt) when its content is
    // no readable picture.
    BitmapDocument(const store::Library& library, const store::StoredPicture& picture,
                   std::filesystem::path folder);

    const EditedPicture& picture() const { return picture_; }
    imaging::PictureKind format() const { return format_; }     // of the file, not of its name
    const std::string& extension() const { return extension_; } // "BMP"
    const std::filesystem::path& editFile() const { return editFile_; }

    // Keeps the picture for undoing, drops what could be done again, and changes the picture.
    // Throws HistoryOverflow, compound::Error, std::length_error or std::bad_alloc; picture and
    // history are as they were then.
    void change(const Edit& edit);

    // One step back, or forward again, with the picture as it is now kept for the other direction.
    // A file that is missing or cannot be read leaves the picture as it is and counts all the same.
    // Throws as change() if the picture cannot be kept; picture and history are as they were then.
    void undo();
    void redo();
    bool canUndo() const { return undo_.isOffered(); }
    bool canRedo() const { return redo_.isOffered(); }
    int undoCount() const { return undo_.count(); }
    int redoCount() const { return redo_.count(); }

    // The history starts afresh: nothing can be undone or done again. No file is removed, and what
    // could have been done again is still counted until the next change.
    void startHistoryAfresh();

    // Removes the files that are counted.
    void removeHistory();

    // Writes FOLDER/Picture.TYPE in the format of the loaded file, an icon with its other frames, a
    // cursor with its hot spot; returns the path. Throws compound::Error naming that file, which is
    // gone then.
    std::filesystem::path write() const;

  private:
    static void step(HistoryStack& from, HistoryStack& to, EditedPicture& picture);

    compound::Disk& disk_;
    std::filesystem::path folder_;
    std::filesystem::path editFile_;
    std::string extension_;
    EditedPicture picture_;
    imaging::PictureKind format_ = imaging::PictureKind::Bmp;
    base::Bytes frames_; // an icon's or cursor's whole file
    HistoryStack undo_;
    HistoryStack redo_;
};

} // namespace editing
