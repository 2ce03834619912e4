// The thumbnail area with its grid of cells. A cell is the widget `img_N` and holds the name and
// the small image of one picture. The strip knows cells and names, but no files.
#pragma once

#include "browser/picture_selection.h"
#include "browser/thumbnail_layout.h"

#include <QFrame>
#include <QImage>

#include <span>
#include <vector>

namespace browser {

class ThumbnailCell : public QWidget {
    Q_OBJECT

  public:
    ThumbnailCell(int index, QWidget* parent);

    enum class Emphasis { None, Selected, Current, CurrentWithFocus };

    void showPicture(const QString& name, const QImage& image);
    void clear();
    void setEmphasis(Emphasis emphasis);

    // Of the name below the picture, in pixels; none at 0.
    void setNameHeight(int height);

    // The name of the shown picture; empty for an empty cell.
    const QString& tag() const { return tag_; }
    const QImage& image() const { return image_; }
    void clearTag();

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QString tag_;
    QImage image_;
    int nameHeight_ = 0;
    bool isFilled_ = false;
    Emphasis emphasis_ = Emphasis::None;
};

class StripMouse;

class ThumbnailStrip : public QFrame {
    Q_OBJECT

  public:
    explicit ThumbnailStrip(QWidget* parent = nullptr);

    // Makes or removes cells, from the highest index down, until the grid is complete.
    void setGrid(const GridSize& grid, const CellSize& cell);
    const GridSize& grid() const { return grid_; }
    std::size_t cells() const { return cells_.size(); }
    const ThumbnailCell& cell(std::size_t index) const { return *cells_[index]; }

    // The size of the picture in a cell with such a side, device-independent pixels.
    static QSizeF pictureArea(double side = kCellSide);
    QSizeF shownPictureArea() const { return pictureArea(cell_.side); }

    double nameHeight() const; // of the names below the pictures, twips

    void clear();
    void clearTags();
    void showPicture(int index, const QString& name, const QImage& image);

    // Empties the cells that show another picture than the one that belongs there now.
    void keep(std::span<const QString> names);

    // Marks the cells of the selected pictures, as far as they are on the page; one of them is the
    // current one.
    void mark(const QString& current, const QSet<QString>& selected);
    const QSet<QString>& selected() const { return selected_; }

    QString nameAt(const QPoint& position) const; // empty for none
    QStringList namesIn(const QRect& area) const; // of the cells that it touches
    QImage currentImage() const; // of the current picture; null when it is not on the screen

    void setCellsVisible(bool visible);

    // What the page shows once all of its pictures are there. Nothing after clear().
    void expect(const ShownRange& shown) { shown_ = shown; }
    const ShownRange& shown() const { return shown_; }

  signals:
    void chosen(const QString& name, Selecting how);
    void banded(const QStringList& covered, const QSet<QString>& before); // by a rubber band
    void dragWanted();                        // of the selected pictures
    void activated(const QString& name);      // double click
    void activatedByKey(const QString& name); // Enter
    void popUpWanted(const QPoint& globalPosition);
    // The pointer is over that picture; an empty name: over none.
    void pointerOver(const QString& name, const QPoint& globalPosition);
    void pagesWanted(int pages);      // forward, or backward if negative
    void rowsWanted(int rows);        // the same
    void sizesWanted(int steps);      // larger, or smaller if negative
    void pictureWanted(int position); // of the group's pictures: to be brought to the screen

  protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    int cellAt(const QPoint& position) const; // -1 for none that shows a picture
    int markedCell() const;                   // -1 for none
    void choose(int index, Selecting how);
    void chooseSoon(int index, Selecting how); // at once, or as soon as its picture is there
    void step(Step step, Selecting how);
    bool stepByKey(const QKeyEvent& event);
    void refreshEmphasis();
    bool isCurrentElsewhere() const; // than on the page

    std::vector<ThumbnailCell*> cells_;
    GridSize grid_;
    CellSize cell_;
    StripMouse* mouse_;
    QString marked_; // the current one
    QSet<QString> selected_;
    bool areCellsVisible_ = true;
    ShownRange shown_;
    int chooseWhenShown_ = -1;
    Selecting howWhenShown_ = Selecting::Alone;
    int wheelRest_ = 0;
    bool isFramed_ = false; // the strip as a whole shows the keyboard's focus
};

} // namespace browser
