// The vector window: one metafile of a group, as large as its window allows. Nothing in it can be
// edited; Escape closes it.
#pragma once

#include "app/twips.h"
#include "editing/picture_in_group.h"
#include "store/library.h"

#include <QDialog>

namespace editing {

class VectorBox;

class frmOptionenWMF : public QDialog {
    Q_OBJECT

  public:
    explicit frmOptionenWMF(QWidget* owner);

    // Opens the window modally and returns when it is closed. A picture that cannot be read is told
    // in a box owned by the window's owner, and no window opens.
    void openFor(const store::Library& library, const PictureInGroup& picture);

    // The opening alone: picture, title, first size, place. Throws as VorschauAnpassen.
    void load(const store::Library& library, const PictureInGroup& picture);

    // Reads the picture and fits `Vector` to its record. Throws compound::Error or
    // picture::DecodeError; the picture shown before then stays.
    void VorschauAnpassen(const store::Library& library, const PictureInGroup& picture);

    // Where `Vector` stands in the window, twips. At the window's first size it fits into a square
    // of 4005 at 30, 30; with a larger window the square grows and stays in the middle.
    const app::TwipRect& vectorRect() const { return vectorRect_; }

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    void fit();
    void Normal();
    void ReduceWidth();
    void ReduceHeight();

    VectorBox* Vector_;
    QWidget* picBild_;  // never shown; has the picture's own size in pixels
    double height_ = 0; // of the picture's record, pixels; 0 where there is no sensible record
    double width_ = 0;
    app::TwipRect area_; // a square
    app::TwipRect vectorRect_;
};

} // namespace editing
