// Taking the main window's picture for --screenshot.
#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

namespace browser {
class frmMain;
}

namespace startup {

// Waits until the window has loaded and painted everything, choosing the first group when none is
// remembered, saves the picture and ends the event loop: with 0, or with 1 when the file cannot be
// written (the reason goes to stderr). Boxes are answered as answerBoxesAlone says.
class Screenshot : public QObject {
    Q_OBJECT

  public:
    // The window must outlive the object.
    Screenshot(browser::frmMain& window, const QString& file);

  private:
    void lookAgain();
    void save();

    browser::frmMain& window_;
    QString file_;
    QTimer timer_;
    bool hasChosenGroup_ = false;
};

} // namespace startup
