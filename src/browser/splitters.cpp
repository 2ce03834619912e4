#include "browser/splitters.h"

#include "app/texts.h"

#include <QMouseEvent>
#include <QPainter>
#include <QShortcut>
#include <QWidget>

#include <functional>

namespace browser {

namespace {

constexpr app::TextPair kColumns{u"Breite der Gruppen", u"Width of the groups"};
constexpr app::TextPair kPreview{u"Höhe der Vorschau", u"Height of the preview"};
constexpr int kKeyStep = 20; // pixels

} // namespace

// A gap that can be dragged. Nothing is to be seen of it but a line below the pointer.
class SplitHandle : public QWidget {
  public:
    SplitHandle(const char* name, Qt::Orientation along, QWidget* surface)
        : QWidget(surface), along_(along) {
        setObjectName(QString::fromLatin1(name));
        setCursor(along == Qt::Horizontal ? Qt::SplitHCursor : Qt::SplitVCursor);
        setAttribute(Qt::WA_Hover);
    }

    std::function<void(int)> dragged; // so many pixels since the last time
    std::function<void()> doubleClicked;

  protected:
    void mousePressEvent(QMouseEvent* event) override {
        if (event->button() == Qt::LeftButton) {
            from_ = placeOf(event);
        }
    }
    // Counted from where the handle was taken: where it stops, it waits for the pointer.
    void mouseMoveEvent(QMouseEvent* event) override {
        if ((event->buttons() & Qt::LeftButton) != 0) {
            const int before = along_ == Qt::Horizontal ? x() : y();
            dragged(placeOf(event) - from_);
            from_ += (along_ == Qt::Horizontal ? x() : y()) - before;
        }
    }
    void mouseDoubleClickEvent(QMouseEvent*) override { doubleClicked(); }
    void paintEvent(QPaintEvent*) override {
        if (underMouse()) {
            QRect line = rect();
            constexpr int kLine = 3;
            along_ == Qt::Horizontal ? line.setWidth(kLine) : line.setHeight(kLine);
            line.moveCenter(rect().center());
            QPainter(this).fillRect(line, palette().highlight());
        }
    }

  private:
    // On the surface: the handle itself moves below the pointer.
    int placeOf(const QMouseEvent* event) const {
        const QPoint place = event->globalPosition().toPoint();
        return along_ == Qt::Horizontal ? place.x() : place.y();
    }

    Qt::Orientation along_;
    int from_ = 0;
};

Splitters::Splitters(QWidget* surface)
    : QObject(surface),
      splSpalten_(new SplitHandle("splSpalten", Qt::Horizontal, surface)),
      splVorschau_(new SplitHandle("splVorschau", Qt::Vertical, surface)) {
    for (SplitHandle* handle : {splSpalten_, splVorschau_}) {
        const auto along = handle == splSpalten_ ? Qt::Horizontal : Qt::Vertical;
        handle->dragged = [this, along](int pixels) { drag(along, pixels); };
        handle->doubleClicked = [this, along] { putBack(along); };
    }
    bindKey(surface, Qt::Key_Left, Qt::Horizontal, -kKeyStep);
    bindKey(surface, Qt::Key_Right, Qt::Horizontal, kKeyStep);
    bindKey(surface, Qt::Key_Up, Qt::Vertical, -kKeyStep);
    bindKey(surface, Qt::Key_Down, Qt::Vertical, kKeyStep);
}

void Splitters::bindKey(QWidget* surface, int key, Qt::Orientation along, int pixels) {
    auto* shortcut = new QShortcut(Qt::ALT | Qt::SHIFT | static_cast<Qt::Key>(key), surface);
    connect(shortcut, &QShortcut::activated, this, [this, along, pixels] { drag(along, pixels); });
}

void Splitters::setCaptions() {
    splSpalten_->setAccessibleName(app::text(kColumns));
    splVorschau_->setAccessibleName(app::text(kPreview));
}

void Splitters::place(const MainLayout& layout, const WindowSize& window) {
    window_ = window;
    splSpalten_->setGeometry(app::toPixels(layout.betweenColumns));
    splVorschau_->setGeometry(app::toPixels(layout.abovePreview));
}

// From what is shown, which is what the user sees moving.
void Splitters::drag(Qt::Orientation along, int pixels) {
    Columns wanted = boundedColumns(columns_, window_);
    if (along == Qt::Horizontal) {
        wanted.leftWidth += app::toTwips(pixels);
    } else {
        wanted.previewHeight -= app::toTwips(pixels);
    }
    change(boundedColumns(wanted, window_));
}

void Splitters::putBack(Qt::Orientation along) {
    Columns wanted = columns_;
    (along == Qt::Horizontal ? wanted.leftWidth : wanted.previewHeight) =
        along == Qt::Horizontal ? kLeftColumnWidth : kPreviewHeight;
    change(wanted);
}

void Splitters::change(const Columns& wanted) {
    if (wanted != columns_) {
        columns_ = wanted;
        emit moved();
    }
}

} // namespace browser
