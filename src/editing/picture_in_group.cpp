#include "editing/picture_in_group.h"

#include "app/message_box.h"
#include "app/texts.h"
#include "picture/picture.h"

namespace editing {

namespace {

constexpr app::TextPair kUnreadable = {
    u"Das Bild \"%1\" der Gruppe \"%2\" kann nicht gelesen werden.",
    u"The picture \"%1\" of the group \"%2\" cannot be read."};
constexpr app::TextPair kNoPicture = {u"Sein Inhalt ist kein lesbares Bild. (%1)",
                                      u"Its content is no readable picture. (%1)"};

// What is wrong with a picture's bytes is not the group file's fault.
QString causeOf(const std::exception& failure) {
    if (dynamic_cast<const picture::DecodeError*>(&failure) != nullptr) {
        return app::text(kNoPicture).arg(QString::fromUtf8(failure.what()));
    }
    return app::errorText(failure);
}

} // namespace

QString unreadableText(const PictureInGroup& picture, const std::exception& failure) {
    return app::text(kUnreadable)
               .arg(QString::fromStdU16String(picture.name.text), picture.groupPath) +
           QStringLiteral("\n\n") + causeOf(failure);
}

} // namespace editing
