// A display with a window manager and a session bus, of the test's own, on which the library waits
// to be started by the bus.
#pragma once

#include <QProcess>
#include <QRect>
#include <QTemporaryDir>

#include <cstdint>
#include <functional>
#include <vector>

struct xcb_connection_t;

// Waits, serving events, until `condition` holds; false when that takes longer than anything may.
bool until(const std::function<bool()>& condition);

class Desktop {
  public:
    Desktop();
    ~Desktop(); // ends everything that was started on it
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;

    // The home of the programs on the desktop.
    QString home() const { return folder_.filePath(QStringLiteral("home")); }
    QString at(const QString& name) const { return folder_.filePath(name); }
    QString busAddress() const { return busAddress_; }
    void killBus();

    // Runs a program with its arguments on the desktop.
    void start(QProcess& process, const QString& program, const QStringList& arguments,
               QProcess::ProcessChannelMode channels = QProcess::ForwardedErrorChannel) const;
    // The same until its end; fails the test when that is a failure. Gives its output.
    QByteArray run(const QString& program, const QStringList& arguments) const;

    // --- Windows
    std::uint32_t makeWindow(QSize size); // on the screen
    void resizeWindow(std::uint32_t window, QSize size);
    void destroyWindow(std::uint32_t window);
    std::vector<std::uint32_t> childrenOf(std::uint32_t window) const;
    QRect placeOf(std::uint32_t window) const;            // on the screen; invalid for none
    std::uint32_t windowNamed(const QString& name) const; // that can be seen; 0 for none
    int visibleWindowsOf(qint64 process) const;
    bool hasKeyboard(std::uint32_t window) const;

    // --- The user's hands
    void click(std::uint32_t window, QPoint position) const;
    void point(std::uint32_t window, QPoint position) const; // moves the mouse there
    void hold() const;                                       // its left button down
    void letGo() const;
    void press(const QStringList& keys) const;

  private:
    void startDisplay();
    void startBus();
    std::vector<std::uint32_t> visibleWindows() const;

    QTemporaryDir folder_;
    QProcess display_;
    QProcess windowManager_;
    QProcess bus_;
    QString displayName_;
    QString busAddress_;
    xcb_connection_t* connection_ = nullptr;
    std::uint32_t root_ = 0;
};
