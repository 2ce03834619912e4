#include "editing/drive_list.h"

#include "app/texts.h"
#include "platform/drives.h"

#include <QSignalBlocker>

namespace editing {

namespace {

constexpr app::TextPair kName{u"Laufwerk", u"Drive"};

} // namespace

DriveList::DriveList(QWidget* parent) : QComboBox(parent) {
    setAccessibleName(app::text(kName));
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    connect(this, &QComboBox::activated, this, &DriveList::driveChosen);
}

QString DriveList::drive() const {
    return currentText();
}

void DriveList::setDrive(const QString& folder) {
    refill(folder);
}

void DriveList::showPopup() {
    refill(drive());
    QComboBox::showPopup();
}

void DriveList::refill(const QString& chosen) {
    const QSignalBlocker blocker(this);
    QStringList drives = platform::drives();
    if (!chosen.isEmpty() && !drives.contains(chosen)) {
        drives += chosen;
    }
    clear();
    addItems(drives);
    setCurrentIndex(static_cast<int>(drives.indexOf(chosen)));
}

} // namespace editing
