// The window `frmFortschritt`: what a long operation does, how far it is, and a button that stops
// it.
#pragma once

#include <QDialog>

#include <cstdint>

class QLabel;
class QProgressBar;
class QPushButton;

namespace app {

class ProgressWindow : public QDialog {
    Q_OBJECT

  public:
    ProgressWindow(const QString& what, bool canStop, QWidget* owner);

    // In bytes. A total of 0: nobody knows. Once all is done what is left cannot be stopped.
    void showProgress(std::uint64_t done, std::uint64_t total);

    // The close box and Escape ask to stop, like the button; the operation closes the window.
    void reject() override;

  signals:
    void stopWanted();

  private:
    QProgressBar* prgFortschritt_;
    QLabel* lblMenge_;
    QPushButton* cmdAbbruch_ = nullptr; // null if stopping is not offered
};

} // namespace app
