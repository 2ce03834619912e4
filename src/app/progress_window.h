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
    enum class Amounts { Megabytes, Pieces };

    ProgressWindow(const QString& what, bool canStop, Amounts amounts, QWidget* owner);

    // In bytes or pieces. A total of 0: nobody knows. Once all is done what is left cannot be
    // stopped.
    void showProgress(std::uint64_t done, std::uint64_t total);

    // The close box and Escape ask to stop, like the button; the operation closes the window.
    void reject() override;

  signals:
    void stopWanted();

  private:
    QString amountText(std::uint64_t done, std::uint64_t total) const;

    Amounts amounts_;
    QProgressBar* prgFortschritt_;
    QLabel* lblMenge_;
    QPushButton* cmdAbbruch_ = nullptr; // null if stopping is not offered
};

} // namespace app
