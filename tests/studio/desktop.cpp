#include "studio/desktop.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <xcb/xcb.h>

namespace {

constexpr int kPatienceMilliseconds = 120'000;

template <typename Reply>
std::unique_ptr<Reply, decltype(&std::free)> owned(Reply* reply) {
    return {reply, &std::free};
}

xcb_atom_t atomNamed(xcb_connection_t* connection, const char* name) {
    const auto reply = owned(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, static_cast<uint16_t>(qstrlen(name)), name),
        nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

QByteArray property(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t name) {
    const auto reply = owned(xcb_get_property_reply(
        connection,
        xcb_get_property(connection, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, 256), nullptr));
    return reply ? QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
                              xcb_get_property_value_length(reply.get()))
                 : QByteArray();
}

// What the program says once it is ready.
QString firstLineOf(QProcess& process) {
    const bool hasSpoken = until([&process] {
        process.waitForReadyRead(50);
        return process.canReadLine() || process.state() == QProcess::NotRunning;
    });
    if (!hasSpoken || !process.canReadLine()) {
        qFatal("%s does not start", qUtf8Printable(process.program()));
    }
    return QString::fromUtf8(process.readLine().trimmed());
}

} // namespace

bool until(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, kPatienceMilliseconds);
}

Desktop::Desktop() {
    QDir().mkpath(home());
    startDisplay();
    startBus();
}

Desktop::~Desktop() {
    for (QProcess* process : {&bus_, &windowManager_, &display_}) {
        process->kill();
        process->waitForFinished();
    }
    if (connection_ != nullptr) {
        xcb_disconnect(connection_);
    }
}

void Desktop::startDisplay() {
    display_.start("Xvfb", {"-displayfd", "1", "-screen", "0", "1400x1000x24", "-nolisten", "tcp"});
    displayName_ = u':' + firstLineOf(display_);
    connection_ = xcb_connect(displayName_.toLatin1().constData(), nullptr);
    if (xcb_connection_has_error(connection_) != 0) {
        qFatal("no connection to the display");
    }
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    start(windowManager_, "openbox", {});
    const xcb_atom_t managed = atomNamed(connection_, "_NET_SUPPORTING_WM_CHECK");
    if (!until([&] { return !property(connection_, root_, managed).isEmpty(); })) {
        qFatal("openbox does not start");
    }
}

void Desktop::startBus() {
    QFile service(at("com.noravex.TXSGraphicsLib.service"));
    QFile settings(at("bus.conf"));
    if (!service.open(QFile::WriteOnly) || !settings.open(QFile::WriteOnly)) {
        qFatal("the bus cannot be set up");
    }
    service.write("[D-BUS Service]\nName=com.noravex.TXSGraphicsLib\nExec=" TXS_PROGRAM
                  " --automation\n");
    settings.write(QStringLiteral("<busconfig><type>session</type><listen>unix:path=%1</listen>"
                                  "<servicedir>%2</servicedir><policy context=\"default\">"
                                  "<allow send_destination=\"*\" eavesdrop=\"true\"/>"
                                  "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy>"
                                  "</busconfig>")
                       .arg(at("bus"), folder_.path())
                       .toUtf8());
    service.close();
    settings.close();
    start(bus_, "dbus-daemon",
          {"--nofork", "--print-address=1", "--config-file=" + settings.fileName()});
    busAddress_ = firstLineOf(bus_);
}

void Desktop::killBus() {
    bus_.kill();
    bus_.waitForFinished();
}

void Desktop::start(QProcess& process, const QString& program, const QStringList& arguments,
                    QProcess::ProcessChannelMode channels) const {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DISPLAY", displayName_);
    environment.insert("QT_QPA_PLATFORM", "xcb");
    environment.insert("TXSGRAPHICSLIB_HOME", home());
    environment.insert("DBUS_SESSION_BUS_ADDRESS", busAddress_);
    environment.insert("LANG", "C.UTF-8");
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(channels);
    process.start(program, arguments);
    if (!process.waitForStarted()) {
        qFatal("%s does not start", qUtf8Printable(program));
    }
}

QByteArray Desktop::run(const QString& program, const QStringList& arguments) const {
    QProcess process;
    start(process, program, arguments);
    EXPECT_TRUE(process.waitForFinished(kPatienceMilliseconds));
    EXPECT_EQ(process.exitCode(), 0) << program.toStdString();
    return process.readAllStandardOutput();
}

std::uint32_t Desktop::makeWindow(QSize size) {
    const xcb_window_t window = xcb_generate_id(connection_);
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, root_, 0, 0,
                      static_cast<uint16_t>(size.width()), static_cast<uint16_t>(size.height()), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(connection_, window);
    xcb_flush(connection_);
    const xcb_atom_t managed = atomNamed(connection_, "WM_STATE");
    EXPECT_TRUE(until([&] { return !property(connection_, window, managed).isEmpty(); }));
    return window;
}

void Desktop::resizeWindow(std::uint32_t window, QSize size) {
    const std::uint32_t values[] = {static_cast<std::uint32_t>(size.width()),
                                    static_cast<std::uint32_t>(size.height())};
    xcb_configure_window(connection_, window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                         values);
    xcb_flush(connection_);
}

void Desktop::destroyWindow(std::uint32_t window) {
    xcb_destroy_window(connection_, window);
    xcb_flush(connection_);
}

std::vector<std::uint32_t> Desktop::childrenOf(std::uint32_t window) const {
    const auto tree =
        owned(xcb_query_tree_reply(connection_, xcb_query_tree(connection_, window), nullptr));
    if (!tree) {
        return {};
    }
    const xcb_window_t* first = xcb_query_tree_children(tree.get());
    return {first, first + xcb_query_tree_children_length(tree.get())};
}

QRect Desktop::placeOf(std::uint32_t window) const {
    const auto size =
        owned(xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, window), nullptr));
    const auto place = owned(xcb_translate_coordinates_reply(
        connection_, xcb_translate_coordinates(connection_, window, root_, 0, 0), nullptr));
    return size && place ? QRect(place->dst_x, place->dst_y, size->width, size->height) : QRect();
}

std::vector<std::uint32_t> Desktop::visibleWindows() const {
    std::vector<std::uint32_t> windows{root_};
    for (std::size_t next = 0; next < windows.size(); ++next) {
        for (const std::uint32_t child : childrenOf(windows[next])) {
            const auto attributes = owned(xcb_get_window_attributes_reply(
                connection_, xcb_get_window_attributes(connection_, child), nullptr));
            if (attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE) {
                windows.push_back(child);
            }
        }
    }
    return windows;
}

std::uint32_t Desktop::windowNamed(const QString& name) const {
    for (const std::uint32_t window : visibleWindows()) {
        if (property(connection_, window, XCB_ATOM_WM_NAME) == name.toLatin1()) {
            return window;
        }
    }
    return 0;
}

int Desktop::visibleWindowsOf(qint64 process) const {
    const xcb_atom_t owner = atomNamed(connection_, "_NET_WM_PID");
    const auto wanted = static_cast<std::uint32_t>(process);
    int count = 0;
    for (const std::uint32_t window : visibleWindows()) {
        const QByteArray value = property(connection_, window, owner);
        count += value == QByteArray(reinterpret_cast<const char*>(&wanted), sizeof wanted) ? 1 : 0;
    }
    return count;
}

bool Desktop::hasKeyboard(std::uint32_t window) const {
    const auto focus =
        owned(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    return focus && focus->focus == window;
}

void Desktop::click(std::uint32_t window, QPoint position) const {
    point(window, position);
    run("xdotool", {"click", "1"});
}

void Desktop::point(std::uint32_t window, QPoint position) const {
    const QPoint place = placeOf(window).topLeft() + position;
    run("xdotool", {"mousemove", QString::number(place.x()), QString::number(place.y())});
}

void Desktop::hold() const {
    run("xdotool", {"mousedown", "1"});
}

void Desktop::letGo() const {
    run("xdotool", {"mouseup", "1"});
}

void Desktop::press(const QStringList& keys) const {
    run("xdotool", QStringList("key") + keys);
}
