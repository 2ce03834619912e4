#include "automation/connect.h"

#include "app/long_operation.h"
#include "app/message_box.h"
#include "app/unattended.h"
#include "browser/frm_main.h"
#include "browser/window_state.h"
#include "platform/host_window.h"
#include "platform/temporary_folder.h"

#include <QApplication>
#include <QDialog>
#include <QThread>
#include <QTimer>

#include <utility>

namespace automation {
namespace {

constexpr int kLookAgainMilliseconds = 20;

// Styles of windows, as numbers that clients know.
constexpr std::uint32_t kOrdinaryWindow = 0x00CF0000; // caption, system menu, frame, all boxes
constexpr std::uint32_t kPopUpWindow = 0x80880000;    // pop-up, border, system menu

// Nothing for a number that no window can be shown in.
std::unique_ptr<platform::HostWindow> findHost(std::uint32_t clientWindow) {
    if (clientWindow == 0) {
        return nullptr;
    }
    try {
        return std::make_unique<platform::HostWindow>(clientWindow);
    } catch (const platform::NoHostWindow& reason) {
        app::tell(QString::fromStdString(reason.what()) +
                  QStringLiteral("; the library is shown as an ordinary window"));
        return nullptr;
    }
}

// Closes the innermost menu or dialog; false when there is none.
bool closeInnermost() {
    if (QWidget* menu = QApplication::activePopupWidget()) {
        menu->close();
        return true;
    }
    QWidget* modal = QApplication::activeModalWidget();
    if (auto* dialog = qobject_cast<QDialog*>(modal)) {
        dialog->reject();
    } else if (modal != nullptr) {
        modal->close();
    }
    return modal != nullptr;
}

} // namespace

Connect::Connect() = default;

Connect::~Connect() {
    host_.reset();
}

void Connect::makeWindow() {
    window_ = std::make_unique<browser::frmMain>(browser::StartMode::Server);
    windowStyle_ = {kOrdinaryWindow, kOrdinaryWindow};
    connect(window_.get(), &browser::frmMain::PictureSelected, this, &Connect::PictureSelected);
    connect(window_.get(), &browser::frmMain::unloaded, this, &Connect::unload);
}

void Connect::ShowGraficsLib(std::uint32_t clientWindow) {
    if (isEnding_) {
        return;
    }
    hasClient_ = true;
    if (isUnloading_) {
        showAfterUnload_ = clientWindow;
        return;
    }
    if (!window_) {
        makeWindow();
    }
    place(clientWindow);
    joinInput();
    becomePopUp();
}

// Two programs that share a display's input queue see each other's focus and keys. X11 has one
// queue a program; there the host window passes the keyboard on instead.
void Connect::joinInput() {
    clientThreadId_ = host_ ? host_->process() : 0;
}

void Connect::detachInput() {
    clientThreadId_ = 0;
}

// Inside the client's window it loses its frame; nothing of its style is removed.
void Connect::becomePopUp() {
    windowStyle_.before = windowStyle_.after;
    windowStyle_.after |= kPopUpWindow;
}

void Connect::place(std::uint32_t clientWindow) {
    if (!host_ || host_->handle() != clientWindow) {
        std::unique_ptr<platform::HostWindow> host = findHost(clientWindow);
        if (host) {
            placeInside(std::move(host));
        } else {
            placeOutside();
        }
    }
    window_->show();
    if (host_) {
        host_->hold(*window_->windowHandle()); // the toolkit shows it as large as it was before
    }
    window_->raise();
    window_->activateWindow();
}

// It becomes the client's child before it is shown, so that no window manager frames it meanwhile.
void Connect::placeInside(std::unique_ptr<platform::HostWindow> host) {
    window_->hide();
    window_->setWindowState(Qt::WindowNoState);
    host_ = std::move(host);
    connect(host_.get(), &platform::HostWindow::lost, this, &Connect::loseClient);
    (void)window_->winId(); // makes the native window
    host_->hold(*window_->windowHandle());
}

void Connect::placeOutside() {
    if (host_) {
        window_->hide();
        host_.reset();
    }
    if (!window_->isVisible()) {
        browser::restoreWindowState(*window_);
    }
}

void Connect::Terminate() {
    hasClient_ = false;
    detachInput();
    end();
}

void Connect::end() {
    isEnding_ = true;
    if (app::isLongOperationRunning()) {
        app::afterLongOperation(this, [this] { end(); });
        return;
    }
    app::answerBoxesAlone();
    if (window_) {
        window_->close();
    }
    emit terminated();
}

void Connect::loseClient() {
    hasClient_ = false;
    showAfterUnload_.reset();
    detachInput();
    if (window_) {
        unload();
    }
}

// Dialogs run event loops of their own inside the window's commands: the window may only go once
// all of them have returned.
void Connect::unload() {
    if (isUnloading_ || isEnding_) {
        return;
    }
    isUnloading_ = true;
    QTimer::singleShot(0, this, &Connect::unloadStep);
}

void Connect::unloadStep() {
    if (isEnding_) {
        return;
    }
    if (app::isLongOperationRunning()) {
        app::afterLongOperation(this, [this] { unloadStep(); });
        return;
    }
    const app::MsgBoxHandler before = app::setMsgBoxHandler({});
    app::answerBoxesAlone();
    const bool isIdle = !closeInnermost() && QThread::currentThread()->loopLevel() <= 1;
    if (isIdle) {
        forgetWindow();
    }
    app::setMsgBoxHandler(before);
    if (!isIdle) {
        QTimer::singleShot(kLookAgainMilliseconds, this, &Connect::unloadStep);
    }
}

void Connect::forgetWindow() {
    window_->close();
    host_.reset();
    window_.reset();
    if (!hasClient_) {
        platform::wipeTemporaryFolder(platform::CopiedPicture::Remove);
    }
    isUnloading_ = false;
    if (const auto clientWindow = std::exchange(showAfterUnload_, std::nullopt)) {
        ShowGraficsLib(*clientWindow);
    }
}

void Connect::saveSettings() {
    if (window_) {
        window_->saveSettings();
    }
}

} // namespace automation
