// Finding pictures and groups by their names: the field in the menu bar, what was found, and the
// index behind them. The window below stays as it is until something is chosen.
#pragma once

#include "finding/library_index.h"

#include <QObject>
#include <QPointer>
#include <QRect>

#include <optional>

class QMenuBar;
class QWidget;

namespace browser {

class FindField;
class FindResults;

class FindPanel : public QObject {
    Q_OBJECT

  public:
    // The widgets become children of bar and surface.
    FindPanel(QMenuBar* bar, QWidget* surface);

    // The library must outlive stop().
    void setLibrary(const store::Library& library);
    void setCaptions();
    // What was found gets the area; the menu bar is that wide (pixels).
    void place(const QRect& area, int barWidth);
    void stop();

    // Goes to the field. The first time the library begins to be read.
    void start();

    // Takes away what was found, and goes back to where the keyboard was unless it went elsewhere.
    void leave();

    // What is selected among what was found.
    std::optional<finding::Match> current() const;

    bool isBusy() const { return index_.isBusy(); } // reading or searching

    finding::LibraryIndex& index() { return index_; }

  signals:
    void currentChanged();
    void wanted(const store::GroupAddress& group, const std::optional<store::PictureName>& picture);

  private:
    void look(const QString& text);
    void showProgress();
    void noteFocus(QWidget* old, QWidget* now);
    bool isOwn(const QWidget* widget) const;

    FindField* field_;
    FindResults* results_;
    finding::LibraryIndex index_;
    const store::Library* library_ = nullptr;
    QPointer<QWidget> before_; // had the keyboard
};

} // namespace browser
