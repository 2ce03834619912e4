#include "browser/picture_renaming.h"

#include "app/message_box.h"
#include "app/texts.h"
#include "commands/picture_renaming.h"
#include "store/names.h"

namespace browser {
namespace {

constexpr int kTitle = 400;
constexpr int kNameExists = 452;

// The elements of every group that are no pictures count as names that are there.
bool isGroupElement(const QString& name) {
    const std::u16string text = name.toStdU16String();
    return text == store::kNameStream || text == store::kParentStream;
}

} // namespace

bool renameInPlace(const store::Library& library, const store::GroupAddress& group,
                   const QString& from, const QString& to, QWidget* owner) {
    const QString refusal =
        isGroupElement(to) ? app::text(kNameExists)
                           : commands::renameOrRefuse(library, group, {from.toStdU16String()}, to);
    if (!refusal.isEmpty()) {
        app::msgBox(refusal, app::Buttons::Ok, app::text(kTitle), owner);
    }
    return refusal.isEmpty();
}

} // namespace browser
