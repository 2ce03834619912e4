// What the mouse does among the thumbnails: a click chooses, Ctrl and Shift choose several, a
// selected picture is dragged, and a rubber band is drawn from between them.
#pragma once

#include "browser/picture_selection.h"

#include <QObject>
#include <QPoint>
#include <QSet>
#include <QString>

#include <memory>
#include <optional>

class QMouseEvent;
class QRubberBand;

namespace browser {

class ThumbnailStrip;

// The way of selecting that goes with a key or a click.
Selecting selectingFor(Qt::KeyboardModifiers modifiers);

class StripMouse : public QObject {
    Q_OBJECT

  public:
    explicit StripMouse(ThumbnailStrip& strip);
    ~StripMouse() override;

    void pressed(const QMouseEvent& event);
    void moved(const QMouseEvent& event);
    void released(const QMouseEvent& event);

    // Forgets the press: the page is another one now.
    void forget();

  signals:
    void chosen(const QString& name, Selecting how);
    void banded(const QStringList& covered, const QSet<QString>& before);
    void dragWanted();

  private:
    struct Pressed {
        QString name; // of a selected one
        Selecting how;
    };

    void pressedOn(const QString& name, const QMouseEvent& event);
    void drawBand(const QPoint& position);

    ThumbnailStrip& strip_;
    std::optional<QPoint> pressedAt_;  // by the left button
    QString pressedOn_;                // empty: on none
    std::optional<Pressed> atRelease_; // unless the selected ones are dragged
    QSet<QString> beforeBand_;
    std::unique_ptr<QRubberBand> band_;
};

} // namespace browser
