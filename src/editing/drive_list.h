// The list of drives: on a system without drive letters the root, the home folder and the mounted
// volumes. Offering a drive does not touch it.
#pragma once

#include <QComboBox>
#include <QString>

namespace editing {

class DriveList : public QComboBox {
    Q_OBJECT

  public:
    explicit DriveList(QWidget* parent);

    // The chosen drive's folder, which is also what the list shows.
    QString drive() const;

    // Chooses a drive without announcing it. One that is not there (any more) is listed as well, so
    // that the user sees which one it was.
    void setDrive(const QString& folder);

    void showPopup() override; // reads the mount table anew first

  signals:
    // The user chose a drive, which may be the one that was chosen before.
    void driveChosen();

  private:
    void refill(const QString& chosen);
};

} // namespace editing
