// The thumbnails' tool tip: the text box `txtName` that shows the picture's name beside the
// pointer. It comes after a moment of rest; once it is shown it follows from thumbnail to thumbnail
// at once, until the pointer has been over the window's free surface.
#pragma once

#include <QLineEdit>
#include <QTimer>

#include <cstdint>

namespace browser {

class ThumbnailToolTip : public QLineEdit {
    Q_OBJECT

  public:
    explicit ThumbnailToolTip(QWidget* surface);

    // The pointer is over that picture; an empty name hides the tool tip.
    void pointerOver(const QString& name, const QPoint& globalPosition);

    // The pointer is over the free surface: hides the tool tip and starts the waiting anew.
    void pointerOnFreeSurface();

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void tick();
    void present();

    QTimer timer_;
    QString name_;
    QPoint position_;
    std::uint8_t ToolTipCounter_; // ticks to wait before the next showing
};

} // namespace browser
