#include "platform/host_window.h"

#include <QEvent>
#include <QGuiApplication>

#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <xcb/xcb.h>

namespace platform {
namespace {

template <typename Reply>
using ReplyPointer = std::unique_ptr<Reply, decltype(&std::free)>;

template <typename Reply>
ReplyPointer<Reply> owned(Reply* reply) {
    return {reply, &std::free};
}

// The server's answer, or nothing for a window that it does not know.
ReplyPointer<xcb_get_window_attributes_reply_t> attributesOf(xcb_connection_t* connection,
                                                             xcb_window_t window) {
    return owned(xcb_get_window_attributes_reply(
        connection, xcb_get_window_attributes(connection, window), nullptr));
}

ReplyPointer<xcb_query_tree_reply_t> treeOf(xcb_connection_t* connection, xcb_window_t window) {
    return owned(xcb_query_tree_reply(connection, xcb_query_tree(connection, window), nullptr));
}

std::optional<QSize> sizeOf(xcb_connection_t* connection, xcb_window_t window) {
    const auto geometry =
        owned(xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr));
    return geometry ? std::optional(QSize(geometry->width, geometry->height)) : std::nullopt;
}

bool isOfThisProgram(xcb_connection_t* connection, xcb_window_t window) {
    const xcb_setup_t* setup = xcb_get_setup(connection);
    return (window & ~setup->resource_id_mask) == setup->resource_id_base;
}

xcb_connection_t* connectionToServer() {
    const auto* native = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    // Other displays of the toolkit may offer that interface too, with nothing behind it.
    if (native == nullptr || QGuiApplication::platformName() != QLatin1String("xcb")) {
        throw NoHostWindow("the display (" + QGuiApplication::platformName().toStdString() +
                           ") knows no windows inside other programs' windows");
    }
    return native->connection();
}

// The toolkit would wrap any number.
void check(xcb_connection_t* connection, xcb_window_t window) {
    const std::string name = "window " + std::to_string(window);
    const auto attributes = attributesOf(connection, window);
    if (!attributes) {
        throw NoHostWindow(name + " does not exist");
    }
    const auto tree = treeOf(connection, window);
    const bool isRoot = !tree || tree->parent == XCB_WINDOW_NONE;
    if (attributes->_class == XCB_WINDOW_CLASS_INPUT_ONLY || isRoot ||
        isOfThisProgram(connection, window)) {
        throw NoHostWindow(name + " cannot hold another window");
    }
    const std::uint32_t events = attributes->your_event_mask | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection, window, XCB_CW_EVENT_MASK, &events);
}

xcb_atom_t atomNamed(xcb_connection_t* connection, const std::string& name) {
    const auto length = static_cast<std::uint16_t>(name.size());
    const auto reply = owned(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, length, name.c_str()), nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

bool hasProperty(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property) {
    const auto reply = owned(xcb_get_property_reply(
        connection,
        xcb_get_property(connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, 0),
        nullptr));
    return reply && reply->type != XCB_ATOM_NONE;
}

// The window around `window` that the window manager knows; `window` itself if there is none.
xcb_window_t managedWindowAround(xcb_connection_t* connection, xcb_window_t window) {
    const xcb_atom_t managed = atomNamed(connection, "WM_STATE");
    for (xcb_window_t next = window; next != XCB_WINDOW_NONE;) {
        if (hasProperty(connection, next, managed)) {
            return next;
        }
        const auto tree = treeOf(connection, next);
        next = tree ? tree->parent : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
    }
    return window;
}

} // namespace

HostWindow::HostWindow(std::uint32_t handle) : connection_(connectionToServer()), handle_(handle) {
    check(connection_, handle_);
    foreign_.reset(QWindow::fromWinId(handle_));
    if (!foreign_) {
        throw NoHostWindow("window " + std::to_string(handle_) + " cannot be used");
    }
    qGuiApp->installNativeEventFilter(this);
    qGuiApp->installEventFilter(this);
}

HostWindow::~HostWindow() {
    qGuiApp->removeNativeEventFilter(this);
    letGo();
}

std::uint32_t HostWindow::process() const {
    const xcb_window_t owner = managedWindowAround(connection_, handle_);
    const auto reply = owned(xcb_get_property_reply(
        connection_,
        xcb_get_property(connection_, 0, owner, atomNamed(connection_, "_NET_WM_PID"),
                         XCB_ATOM_CARDINAL, 0, 1),
        nullptr));
    std::uint32_t process = 0;
    if (reply && xcb_get_property_value_length(reply.get()) == sizeof process) {
        std::memcpy(&process, xcb_get_property_value(reply.get()), sizeof process);
    }
    return process;
}

void HostWindow::hold(QWindow& window) {
    if (held_ != &window) {
        letGo();
        held_ = &window;
        window.setParent(foreign_.get());
    }
    // The toolkit does not know a foreign window's size.
    if (const auto size = sizeOf(connection_, handle_)) {
        fit(*size);
    } else {
        lose(); // perhaps before its events were asked for
    }
}

void HostWindow::fit(const QSize& nativeSize) {
    if (held_) {
        held_->setGeometry(QRect(QPoint(0, 0), nativeSize / held_->devicePixelRatio()));
    }
}

// The server destroys a lost host's children with it. What the toolkit holds of them goes too, and
// must not be owned by the wrapper of the host any more.
void HostWindow::letGo() {
    if (!held_) {
        return;
    }
    QWindow* window = std::exchange(held_, nullptr);
    window->setVisible(false);
    if (isLost_) {
        window->destroy();
    }
    window->setParent(nullptr);
}

void HostWindow::lose() {
    if (!isLost_) {
        isLost_ = true;
        QMetaObject::invokeMethod(
            this, [this] { emit lost(); }, Qt::QueuedConnection);
    }
}

bool HostWindow::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    constexpr int kEventKind = 0x7f; // without the mark of events that other programs send
    if (isLost_ || eventType != "xcb_generic_event_t") {
        return false;
    }
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & kEventKind) == XCB_CONFIGURE_NOTIFY) {
        const auto* change = static_cast<const xcb_configure_notify_event_t*>(message);
        if (change->window == handle_) {
            fit(QSize(change->width, change->height));
        }
    } else if ((event->response_type & kEventKind) == XCB_DESTROY_NOTIFY) {
        if (static_cast<const xcb_destroy_notify_event_t*>(message)->window == handle_) {
            lose();
        }
    }
    return false;
}

bool HostWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonPress && watched == held_) {
        takeKeyboard();
    } else if (event->type() == QEvent::Expose && !isLost_) {
        auto* window = qobject_cast<QWindow*>(watched);
        if (window != nullptr && isDialogOfHeld(*window)) {
            putAboveHost(*window);
        }
    }
    return false;
}

// The toolkit may take itself for active while the keyboard is still the host's.
void HostWindow::takeKeyboard() {
    xcb_set_input_focus(connection_, XCB_INPUT_FOCUS_PARENT,
                        static_cast<xcb_window_t>(held_->winId()), XCB_CURRENT_TIME);
    xcb_flush(connection_);
}

// The toolkit gives a window inside another one no dialogs of its own; dialogs of dialogs it knows.
bool HostWindow::isDialogOfHeld(const QWindow& window) const {
    return held_ && &window != held_ && window.isTopLevel() && window.type() == Qt::Dialog &&
           window.transientParent() == nullptr;
}

// Else a dialog could fall behind the host's program.
void HostWindow::putAboveHost(QWindow& dialog) {
    const xcb_window_t owner = managedWindowAround(connection_, handle_);
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE,
                        static_cast<xcb_window_t>(dialog.winId()), XCB_ATOM_WM_TRANSIENT_FOR,
                        XCB_ATOM_WINDOW, 32, 1, &owner);
    xcb_flush(connection_);
}

} // namespace platform
