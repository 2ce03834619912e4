#include "browser/window_state.h"

#include "platform/settings_backend.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <algorithm>
#include <array>

namespace browser {
namespace {

constexpr int kMostPixels = 100'000;
constexpr int kTitleBar = 32; // pixels, as high as window managers commonly draw it
const QString kSection = QStringLiteral("Software\\NORAVEX GmbH\\GraphicsLib\\Window");

const QString kLeftWidth = QStringLiteral("LeftColumn");
const QString kPreviewHeightName = QStringLiteral("PreviewHeight");

QString read(const QString& name) {
    return platform::nativeSettings().read(platform::Hive::CurrentUser, kSection, name, {});
}

int areaOf(const QRect& rectangle) {
    return rectangle.isEmpty() ? 0 : rectangle.width() * rectangle.height();
}

double readLength(const QString& name, double otherwise) {
    bool isNumber = false;
    const double length = read(name).toDouble(&isNumber);
    return isNumber && length > 0 && length < app::toTwips(kMostPixels) ? length : otherwise;
}

} // namespace

WindowState readWindowState() {
    const std::array names{QStringLiteral("Left"), QStringLiteral("Top"), QStringLiteral("Width"),
                           QStringLiteral("Height")};
    std::array<int, 4> numbers{};
    for (std::size_t i = 0; i < names.size(); ++i) {
        bool isNumber = false;
        numbers.at(i) = read(names.at(i)).toInt(&isNumber);
        if (!isNumber || std::abs(numbers.at(i)) > kMostPixels) {
            return {};
        }
    }
    WindowState state;
    state.place = QRect(numbers[0], numbers[1], numbers[2], numbers[3]);
    state.maximised = read(QStringLiteral("Maximised")) == u'1';
    return state.place.isEmpty() ? WindowState() : state;
}

void writeWindowState(const WindowState& state) {
    const auto number = [](const QString& name, int value) {
        return platform::Setting{kSection, name, QString::number(value)};
    };
    platform::nativeSettings().write(
        {number(QStringLiteral("Left"), state.place.left()),
         number(QStringLiteral("Top"), state.place.top()),
         number(QStringLiteral("Width"), state.place.width()),
         number(QStringLiteral("Height"), state.place.height()),
         number(QStringLiteral("Maximised"), state.maximised ? 1 : 0)});
}

QRect placeOnScreens(const QRect& place, QSize minimum, const QList<QRect>& screens) {
    if (place.isEmpty() || screens.isEmpty()) {
        return {};
    }
    const auto shows = [&place](const QRect& screen) { return areaOf(screen & place); };
    const QRect& screen = *std::max_element(
        screens.begin(), screens.end(),
        [&shows](const QRect& one, const QRect& other) { return shows(one) < shows(other); });
    const QSize room(screen.width(), screen.height() - kTitleBar);
    const QSize size = place.size().boundedTo(room).expandedTo(minimum);
    const int left =
        std::max(screen.left(), std::min(place.left(), screen.right() + 1 - size.width()));
    const int lowestTop = screen.bottom() + 1 - size.height();
    const int top = std::max(screen.top() + kTitleBar, std::min(place.top(), lowestTop));
    return {QPoint(left, top), size};
}

Columns readColumns() {
    return {readLength(kLeftWidth, kLeftColumnWidth),
            readLength(kPreviewHeightName, kPreviewHeight)};
}

void writeColumns(const Columns& columns) {
    platform::nativeSettings().write(
        {{kSection, kLeftWidth, QString::number(columns.leftWidth)},
         {kSection, kPreviewHeightName, QString::number(columns.previewHeight)}});
}

void restoreWindowState(QWidget& window) {
    const WindowState state = readWindowState();
    QList<QRect> screens;
    for (const QScreen* screen : QGuiApplication::screens()) {
        screens.append(screen->availableGeometry());
    }
    const QRect place = placeOnScreens(state.place, window.minimumSize(), screens);
    if (place.isValid()) {
        window.setGeometry(place);
    }
    if (state.maximised) {
        window.setWindowState(window.windowState() | Qt::WindowMaximized);
    }
}

void saveWindowState(const QWidget& window) {
    const QRect normal = window.normalGeometry();
    writeWindowState({normal.isEmpty() ? window.geometry() : normal, window.isMaximized()});
}

} // namespace browser
