// The pictures of one direction of the history, kept as numbered files: "Undo1.BMP", "Undo2.BMP",
// ... The content is lossless whatever the name says, so that undoing gives back every pixel;
// reading goes by the content.
//
// Files that are no longer counted stay where they are until their names are used again.
#pragma once

#include "compound/disk.h"
#include "imaging/operations/edits.h"

#include <QColorSpace>
#include <QPoint>

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace editing {

// The history is full.
class HistoryOverflow : public std::overflow_error {
  public:
    using std::overflow_error::overflow_error;
};

class HistoryStack {
  public:
    using EditedPicture = imaging::operations::EditedPicture;

    static constexpr int kMost = 255; // files

    // Files are FOLDER/BASEk.EXTENSION; `disk` must live as long as the stack.
    HistoryStack(compound::Disk& disk, std::filesystem::path folder, std::string baseName,
                 std::string extension);

    int count() const { return static_cast<int>(steps_.size()); }

    // Whether the menu offers to go back to the last one. Not the same as having files: see hide().
    bool isOffered() const { return isOffered_; }

    // Writes the picture as the next file. HistoryOverflow when there are kMost; compound::Error
    // when it cannot be written. The stack is as it was then, and no part of the file stays.
    void push(const EditedPicture& picture);

    // The last file's picture; nothing if it is missing or cannot be read.
    std::optional<EditedPicture> top() const;

    // Removes the last file, as far as that is possible, and counts down.
    void pop();

    // The same for all of them.
    void clear();

    void forget(); // counts none; the files stay
    void hide();   // is offered no longer, until the first file is written anew

    std::filesystem::path fileOf(int number) const; // from 1 on

  private:
    // What no pixel tells.
    struct Step {
        QPoint hotSpot;
        int dotsPerMeterX = 0;
        int dotsPerMeterY = 0;
        QColorSpace colours;
    };

    compound::Disk& disk_;
    std::filesystem::path folder_;
    std::string baseName_;
    std::string extension_;
    std::vector<Step> steps_;
    bool isOffered_ = false;
};

} // namespace editing
