#include "startup/screenshot.h"

#include "app/unattended.h"
#include "browser/frm_main.h"

#include <QCoreApplication>
#include <QImageWriter>
#include <QPixmap>

namespace startup {
namespace {

constexpr int kLookAgainMilliseconds = 20;

} // namespace

Screenshot::Screenshot(browser::frmMain& window, const QString& file)
    : window_(window), file_(file) {
    app::answerBoxesAlone();
    timer_.setInterval(kLookAgainMilliseconds);
    connect(&timer_, &QTimer::timeout, this, &Screenshot::lookAgain);
    timer_.start();
}

void Screenshot::lookAgain() {
    if (!window_.isSettled()) {
        return;
    }
    if (!hasChosenGroup_) {
        hasChosenGroup_ = true;
        if (!window_.selectedGroup()) {
            window_.SelectFirstGroup();
        } else {
            window_.SelectPicture();
        }
        return;
    }
    timer_.stop();
    save();
}

void Screenshot::save() {
    QImageWriter writer(file_, "png");
    const bool isSaved = writer.write(window_.grab().toImage());
    if (!isSaved) {
        app::tell(file_ + QLatin1String(": ") + writer.errorString());
    }
    QCoreApplication::exit(isSaved ? 0 : 1);
}

} // namespace startup
