#include "commands/shown_picture.h"

#include "app/texts.h"

namespace commands {

ShownPicture ShownPicture::none() {
    ShownPicture picture;
    picture.isNone_ = true;
    return picture;
}

QString ShownPicture::nameText() const {
    return name_ ? QString::fromStdU16String(name_->text) : QString();
}

QString ShownPicture::caption() const {
    return isNone_ ? app::text(app::kTextNoPicture) : nameText();
}

} // namespace commands
