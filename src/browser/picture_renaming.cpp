#include "browser/picture_renaming.h"

#include "app/message_box.h"
#include "app/texts.h"
#include "compound/error.h"
#include "store/names.h"
#include "store/picture_operations.h"

namespace browser {
namespace {

constexpr int kTitle = 400;
constexpr int kNotForPictures = 450;
constexpr int kNameMissing = 451;
constexpr int kNameExists = 452;
constexpr int kNameInvalid = 951;

// Names count here as they are written; the store compares without regard to case.
bool isElementOf(const store::Library& library, const store::GroupAddress& group,
                 const store::PictureName& name) {
    if (name.text == store::kNameStream || name.text == store::kParentStream) {
        return true;
    }
    return store::findPicture(library, group, name) == name;
}

// What the box says when the name is refused; empty when the picture was renamed.
QString renameOrRefuse(const store::Library& library, const store::GroupAddress& group,
                       const QString& from, const QString& to) {
    if (to == app::text(app::kTextNoPicture)) {
        return u'"' + to + app::text(kNotForPictures);
    }
    if (to.isEmpty()) {
        return app::text(kNameMissing);
    }
    try {
        const store::PictureName newName{to.toStdU16String()};
        if (isElementOf(library, group, newName)) {
            return app::text(kNameExists);
        }
        store::renamePicture(library, group, {from.toStdU16String()}, newName);
    } catch (const compound::Error& error) {
        if (error.code() == compound::ErrorCode::InvalidName ||
            error.code() == compound::ErrorCode::Exists) {
            return app::text(kNameInvalid);
        }
        throw;
    }
    return {};
}

} // namespace

bool renameInPlace(const store::Library& library, const store::GroupAddress& group,
                   const QString& from, const QString& to, QWidget* owner) {
    const QString refusal = renameOrRefuse(library, group, from, to);
    if (!refusal.isEmpty()) {
        app::msgBox(refusal, app::Buttons::Ok, app::text(kTitle), owner);
    }
    return refusal.isEmpty();
}

} // namespace browser
