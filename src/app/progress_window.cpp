#include "app/progress_window.h"

#include "app/texts.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace app {
namespace {

constexpr int kAbort = 103;
constexpr int kSteps = 1000; // of the bar
constexpr int kBarWidth = 308;
constexpr TextPair kAmount{u"%1 von %2 MB", u"%1 of %2 MB"};
constexpr TextPair kPieces{u"%1 von %2", u"%1 of %2"};
constexpr TextPair kFinishing{u"Wird abgeschlossen", u"Finishing"};
constexpr TextPair kStops{u"Wird abgebrochen", u"Stopping"};

QString megabytes(std::uint64_t bytes) {
    return QString::number(bytes / 1'000'000);
}

} // namespace

ProgressWindow::ProgressWindow(const QString& what, bool canStop, Amounts amounts, QWidget* owner)
    : QDialog(owner),
      amounts_(amounts),
      prgFortschritt_(new QProgressBar(this)),
      lblMenge_(new QLabel(this)) {
    setObjectName(QStringLiteral("frmFortschritt"));
    setWindowTitle(kProgramTitle);
    setModal(true);
    auto* lblVorgang = new QLabel(what, this);
    lblVorgang->setObjectName(QStringLiteral("lblVorgang"));
    lblVorgang->setTextFormat(Qt::PlainText);
    prgFortschritt_->setObjectName(QStringLiteral("prgFortschritt"));
    prgFortschritt_->setAccessibleName(what);
    prgFortschritt_->setTextVisible(false);
    prgFortschritt_->setFixedWidth(kBarWidth); // the amounts below change theirs
    lblMenge_->setObjectName(QStringLiteral("lblMenge"));
    lblMenge_->setTextFormat(Qt::PlainText);
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(16, 16, 16, 14);
    all->setSpacing(10);
    all->addWidget(lblVorgang);
    all->addWidget(prgFortschritt_);
    all->addWidget(lblMenge_);
    if (canStop) {
        cmdAbbruch_ = new QPushButton(text(kAbort), this);
        cmdAbbruch_->setObjectName(QStringLiteral("cmdAbbruch"));
        all->addWidget(cmdAbbruch_, 0, Qt::AlignRight);
        connect(cmdAbbruch_, &QPushButton::clicked, this, &ProgressWindow::reject);
    }
    all->setSizeConstraint(QLayout::SetFixedSize);
}

QString ProgressWindow::amountText(std::uint64_t done, std::uint64_t total) const {
    return amounts_ == Amounts::Megabytes ? text(kAmount).arg(megabytes(done), megabytes(total))
                                          : text(kPieces).arg(done).arg(total);
}

void ProgressWindow::showProgress(std::uint64_t done, std::uint64_t total) {
    const bool isCounting = total > 0 && done < total;
    prgFortschritt_->setRange(0, isCounting ? kSteps : 0); // without a range it only moves
    if (isCounting) {
        prgFortschritt_->setValue(
            static_cast<int>(static_cast<double>(done) / static_cast<double>(total) * kSteps));
    }
    const bool isStopping = cmdAbbruch_ != nullptr && !cmdAbbruch_->isEnabled() && isCounting;
    if (!isStopping) {
        lblMenge_->setText(isCounting  ? amountText(done, total)
                           : total > 0 ? text(kFinishing)
                                       : QString());
    }
    if (cmdAbbruch_ != nullptr && total > 0 && !isCounting) {
        cmdAbbruch_->setEnabled(false);
    }
}

void ProgressWindow::reject() {
    if (cmdAbbruch_ == nullptr || !cmdAbbruch_->isEnabled()) {
        return;
    }
    cmdAbbruch_->setEnabled(false);
    lblMenge_->setText(text(kStops));
    emit stopWanted();
}

} // namespace app
