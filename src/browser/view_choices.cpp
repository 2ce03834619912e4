#include "browser/view_choices.h"

#include "platform/settings_backend.h"

#include <QString>

namespace browser {
namespace {

const QString kSection = QStringLiteral("Software\\NORAVEX GmbH\\GraphicsLib\\View");
const QString kColumn = QStringLiteral("ListColumn"); // from 1; 0 for none
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

ViewChoices readViewChoices() {
    ViewChoices choices;
    choices.order.column = readNumber(kColumn, 0, static_cast<int>(kListColumns), 0) - 1;
    if (choices.order.column >= 0 && readNumber(kDescending, 0, 1, 0) == 1) {
        choices.order.direction = Qt::DescendingOrder;
    }
    return choices;
}

void writeViewChoices(const ViewChoices& choices) {
    if (choices == readViewChoices()) {
        return;
    }
    const auto write = [](const QString& name, int number) {
        platform::nativeSettings().write(kSection, name, QString::number(number));
    };
    write(kColumn, choices.order.column + 1);
    write(kDescending, choices.order.direction == Qt::DescendingOrder ? 1 : 0);
}

} // namespace browser
