#include "browser/view_choices.h"

#include "platform/settings_backend.h"

#include <QString>

#include <algorithm>
#include <cstddef>

namespace browser {
namespace {

const QString kSection = QStringLiteral("Software\\NORAVEX GmbH\\GraphicsLib\\View");
const QString kColumn = QStringLiteral("ListColumn"); // from 1; 0 for none
const QString kSide = QStringLiteral("ThumbnailSize");
const QString kNames = QStringLiteral("ThumbnailNames");
const QString kDescending = QStringLiteral("ListDescending");

// A whole number from `least` to `most`; nothing else counts.
int readNumber(const QString& name, int least, int most, int otherwise) {
    bool isNumber = false;
    const int number = platform::nativeSettings()
                           .read(platform::Hive::CurrentUser, kSection, name, {})
                           .toInt(&isNumber);
    return isNumber && number >= least && number <= most ? number : otherwise;
}

} // namespace

int sideBeside(int side, int steps) {
    const auto at = std::find(kThumbnailSides.begin(), kThumbnailSides.end(), side);
    const auto wanted = at - kThumbnailSides.begin() + steps;
    const auto last = static_cast<std::ptrdiff_t>(kThumbnailSides.size()) - 1;
    return kThumbnailSides.at(
        static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(wanted, 0, last)));
}

ViewChoices readViewChoices() {
    ViewChoices choices;
    choices.order.column = readNumber(kColumn, 0, static_cast<int>(kListColumns), 0) - 1;
    if (choices.order.column >= 0 && readNumber(kDescending, 0, 1, 0) == 1) {
        choices.order.direction = Qt::DescendingOrder;
    }
    const int side = readNumber(kSide, kThumbnailSides.front(), kThumbnailSides.back(), 0);
    if (std::find(kThumbnailSides.begin(), kThumbnailSides.end(), side) != kThumbnailSides.end()) {
        choices.thumbnailSide = side;
    }
    choices.hasNames = readNumber(kNames, 0, 1, 0) == 1;
    return choices;
}

void writeViewChoices(const ViewChoices& choices) {
    if (choices == readViewChoices()) {
        return;
    }
    const auto number = [](const QString& name, int value) {
        return platform::Setting{kSection, name, QString::number(value)};
    };
    platform::nativeSettings().write(
        {number(kColumn, choices.order.column + 1),
         number(kDescending, choices.order.direction == Qt::DescendingOrder ? 1 : 0),
         number(kSide, choices.thumbnailSide), number(kNames, choices.hasNames ? 1 : 0)});
}

} // namespace browser
