// A window of another program with one of this program's windows in it.
#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QPointer>
#include <QSize>
#include <QWindow>

#include <cstdint>
#include <memory>
#include <stdexcept>

struct xcb_connection_t;

namespace platform {

// Why a window cannot be shown in another program's one, as an English line for stderr.
class NoHostWindow : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// The window that is held is a true child of the host: it fills it, follows its size, and takes the
// keyboard when it is clicked. Dialogs of the held window stay above the host's program.
class HostWindow : public QObject, private QAbstractNativeEventFilter {
    Q_OBJECT

  public:
    // `handle` is the system's number of the window. Throws NoHostWindow when there is no such
    // window, when it is none that can hold another (the screen's own, an invisible one, one of
    // this program), or when the display knows no windows inside other programs' windows.
    explicit HostWindow(std::uint32_t handle);
    ~HostWindow() override; // lets go of the held window, which is hidden

    // Makes the window a child of the host; its owner stays who it was. Called again it only fits
    // the size. The window must have a native window and should not be visible yet, so that no
    // window manager takes hold of it.
    void hold(QWindow& window);

    std::uint32_t handle() const { return handle_; }

    // The number of the process that the host belongs to; 0 when the host does not tell.
    std::uint32_t process() const;

  signals:
    // The other program has closed the host, or has died. The held window's native window is gone
    // with it; the toolkit learns of that when the HostWindow goes.
    void lost();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
    void fit(const QSize& nativeSize);
    void takeKeyboard();
    bool isDialogOfHeld(const QWindow& window) const;
    void putAboveHost(QWindow& dialog);
    void letGo();
    void lose();

    xcb_connection_t* connection_;
    std::uint32_t handle_;
    bool isLost_ = false;
    QPointer<QWindow> held_;
    std::unique_ptr<QWindow> foreign_;
};

} // namespace platform
