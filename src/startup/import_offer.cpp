#include "startup/import_offer.h"

#include "browser/frm_main.h"
#include "commands/frm_import.h"

#include <QApplication>

#include <utility>

namespace startup {
namespace {

constexpr int kLookAgainMilliseconds = 20;

} // namespace

ImportOffer::ImportOffer(browser::frmMain& window, std::filesystem::path file)
    : window_(window), file_(std::move(file)) {
    timer_.setInterval(kLookAgainMilliseconds);
    connect(&timer_, &QTimer::timeout, this, &ImportOffer::lookAgain);
    timer_.start();
}

void ImportOffer::lookAgain() {
    // What the start has to tell, of damaged groups for example, comes first.
    if (!window_.isSettled() || QApplication::activeModalWidget() != nullptr) {
        return;
    }
    timer_.stop();
    commands::frmImport dialog(window_, &window_);
    dialog.openFor(commands::contextOf(window_.selectedGroup(), window_.shownPicture()), file_);
}

} // namespace startup
