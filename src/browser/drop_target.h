// Takes what is dropped on the tree, on the thumbnails and on the list.
#pragma once

#include <QDropEvent>
#include <QObject>
#include <QTimer>

#include <functional>

class QWidget;

namespace browser {

enum class DropKind { Copy, Move };

class DropTarget : public QObject {
    Q_OBJECT

  public:
    // What the widget's owner says to a drop at that position, and shows meanwhile.
    struct Owner {
        std::function<bool(const QPoint&)> takesAt;
        std::function<void(const QPoint&)> hover;  // the pointer stays there with its burden
        std::function<void(const QPoint&)> rested; // for a while by now
        std::function<void()> left;                // it is gone, or has dropped
    };

    // Watches the widget, which must live as long as this.
    DropTarget(QWidget& widget, Owner owner);

  signals:
    // Sent in the middle of the drop: whoever takes it reads the data now and works later, since
    // the other program waits for the answer.
    void dropped(const QPoint& position, const QMimeData* data, DropKind kind);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void dragged(QDropEvent& event);
    void drop(QDropEvent& event);
    void leave();

    Owner owner_;
    QTimer resting_;
    QPoint position_;
};

} // namespace browser
