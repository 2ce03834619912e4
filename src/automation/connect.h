// What another program, the drawing studio, drives the library by.
//
// The object knows no bus: whatever carries calls between programs on a system calls its methods
// and passes its signal on.
#pragma once

#include <QObject>

#include <cstdint>
#include <memory>
#include <optional>

namespace browser {
class frmMain;
}
namespace platform {
class HostWindow;
}

namespace automation {

class Connect : public QObject {
    Q_OBJECT

  public:
    Connect();
    ~Connect() override;

    // Shows the main window inside the client's window with that number, making it if there is
    // none. Called again it brings the same window to the front, in another client window if so
    // asked. Without a usable client window the main window is an ordinary one; stderr says why
    // unless the number is 0. While the last window is still being unloaded the new one follows.
    void ShowGraficsLib(std::uint32_t clientWindow);

    // The client wants no more of the library: unloads the main window whatever it is doing (a
    // running operation is asked to stop and waited for, open dialogs are left to their fate), then
    // emits terminated().
    void Terminate();

    // The same end without the client's will.
    void end();

    // The client has gone: closes the window with its dialogs as their Escape key would, their
    // questions answered with No, removes the temporary files, and waits for the next call.
    void loseClient();

    // Whether a client may still read the picture that was handed over last.
    bool hasClient() const { return hasClient_; }

    // Saves what the next run is to find; nothing without a window.
    void saveSettings();

    bool hasWindow() const { return window_ != nullptr; }

    // The thread of the client's window; where threads have no numbers that other programs know,
    // its process. 0 when the client's window does not tell.
    std::uint32_t clientThreadId() const { return clientThreadId_; }

    // The main window's style before and after the last ShowGraficsLib, as the number that clients
    // know: they find the bits of a pop-up window with a border and a system menu in it.
    struct WindowStyle {
        std::uint32_t before = 0;
        std::uint32_t after = 0;
    };
    const WindowStyle& windowStyle() const { return windowStyle_; }

  signals:
    // The user has taken a picture over; `path` is a copy of it that the client must read before
    // its next call: the next picture may take the same place.
    void PictureSelected(const QString& path);

    // The process is to end now, without anything more being done.
    void terminated();

  private:
    void makeWindow();
    void place(std::uint32_t clientWindow);
    void placeInside(std::unique_ptr<platform::HostWindow> host);
    void placeOutside();
    void joinInput();
    void detachInput();
    void becomePopUp();
    void unload();
    void unloadStep();
    void forgetWindow();

    std::unique_ptr<browser::frmMain> window_;
    std::unique_ptr<platform::HostWindow> host_; // goes before the window that it holds
    std::uint32_t clientThreadId_ = 0;
    WindowStyle windowStyle_;
    std::optional<std::uint32_t> showAfterUnload_;
    bool hasClient_ = false;
    bool isUnloading_ = false;
    bool isEnding_ = false;
};

} // namespace automation
