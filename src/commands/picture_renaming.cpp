#include "commands/picture_renaming.h"

#include "app/long_operation.h"
#include "app/texts.h"
#include "compound/error.h"
#include "store/picture_operations.h"

#include <QApplication>

namespace commands {
namespace {

constexpr int kNotForPictures = 450;
constexpr int kNameMissing = 451;
constexpr int kNameExists = 452;
constexpr int kNameInvalid = 951;
constexpr app::TextPair kRenaming{u"Das Bild wird umbenannt", u"The picture is being renamed"};

} // namespace

QString refusalOf(const QString& newName) {
    if (newName == app::text(app::kTextNoPicture)) {
        return u'"' + newName + app::text(kNotForPictures);
    }
    return newName.isEmpty() ? app::text(kNameMissing) : QString();
}

QString renameOrRefuse(const store::Library& library, const store::GroupAddress& group,
                       const store::PictureName& from, const QString& newName) {
    QString refusal = refusalOf(newName);
    if (!refusal.isEmpty()) {
        return refusal;
    }
    const store::PictureName to{newName.toStdU16String()};
    const auto there = app::resultOfReading(QApplication::activeWindow(),
                                            [&] { return store::findPicture(library, group, to); });
    if (there == to) {
        return app::text(kNameExists);
    }
    try {
        app::runLong({app::text(kRenaming)}, QApplication::activeWindow(),
                     [&](store::Progress&) { store::renamePicture(library, group, from, to); });
    } catch (const compound::Error& error) {
        if (error.code() == compound::ErrorCode::InvalidName ||
            error.code() == compound::ErrorCode::Exists) {
            return app::text(kNameInvalid);
        }
        throw;
    }
    return {};
}

} // namespace commands
