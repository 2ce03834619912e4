// Which picture the main window shows, by name.
//
// Without a name either none was chosen yet, or the window says that there is none. What the label
// below the preview reads follows from this and is never compared: a picture may be called like the
// words for none.
#pragma once

#include "store/address.h"

#include <QString>

#include <optional>

namespace commands {

class ShownPicture {
  public:
    ShownPicture() = default; // none was chosen yet
    explicit ShownPicture(store::PictureName name) : name_(std::move(name)) {}
    static ShownPicture none(); // the window says that there is none

    const std::optional<store::PictureName>& name() const { return name_; }
    bool isNone() const { return isNone_; }
    bool isUnchosen() const { return !name_ && !isNone_; }

    QString nameText() const; // empty without a name
    QString caption() const;  // what the label reads; empty when none was chosen yet

  private:
    std::optional<store::PictureName> name_;
    bool isNone_ = false;
};

} // namespace commands
