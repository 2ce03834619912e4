// The two handles in the gaps of the main window: between the columns, and between tree and
// preview. Dragging moves them, a double click puts them back where the design has them; so do the
// keys Alt+Shift+arrow.
#pragma once

#include "browser/main_layout.h"

#include <QObject>

class QWidget;

namespace browser {

class SplitHandle;

class Splitters : public QObject {
    Q_OBJECT

  public:
    // The handles are children of the surface, the keys work in its window.
    explicit Splitters(QWidget* surface);

    // What the user wants; a small window may show less of it.
    const Columns& columns() const { return columns_; }
    void setColumns(const Columns& columns) { columns_ = columns; }

    // The layout that the columns give a window of that size.
    void place(const MainLayout& layout, const WindowSize& window);

    void setCaptions();

  signals:
    void moved();

  private:
    void drag(Qt::Orientation along, int pixels);
    void putBack(Qt::Orientation along);
    void change(const Columns& wanted);
    void bindKey(QWidget* surface, int key, Qt::Orientation along, int pixels);

    Columns columns_;
    WindowSize window_;
    SplitHandle* splSpalten_;
    SplitHandle* splVorschau_;
};

} // namespace browser
