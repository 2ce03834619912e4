// What there is to know about one picture: width and height in pixels or twips, size, type, name,
// and a preview; of an icon or cursor all its pictures.
#pragma once

#include "app/twips.h"
#include "store/picture_operations.h"

#include <QDialog>

class QGridLayout;
class QGroupBox;
class QLabel;
class QPushButton;
class QRadioButton;

namespace editing {
class PictureBox;
}

namespace commands {

class FrameStrip;

class frmInfos : public QDialog {
    Q_OBJECT

  public:
    explicit frmInfos(QWidget* owner);

    // Reads the picture, shows the dialog and returns when it is closed. Throws compound::Error,
    // and shows nothing, when the picture cannot be read; one whose record is missing has the size
    // 0, and one that cannot be decoded no preview.
    void openFor(const store::Library& library, const store::GroupAddress& group,
                 const store::PictureName& name);

  private:
    QGroupBox* makeProperties();
    QGroupBox* makeUnit();
    QGroupBox* makePreview();
    QLabel* addProperty(QGridLayout* grid, int captionId, const char* captionName,
                        const char* valueName);
    void arrange();
    void connectControls();

    void showFacts(const store::PictureEntry& picture);
    void loadPreview(const store::Library& library, const store::GroupAddress& group,
                     const store::PictureName& name);
    void VorschauAnpassen();
    void convert(double (*toOtherUnit)(double));

    QLabel* lblName2_;
    QLabel* lblBreite2_ = nullptr;
    QLabel* lblH_he2_ = nullptr;
    QLabel* lblSize2_ = nullptr;
    QLabel* lblDateiTyp_ = nullptr;
    QRadioButton* optPixel_ = nullptr;
    QRadioButton* optTwip_ = nullptr;
    app::TwipRect designPlace_; // of imgBild: a square, from which it is fitted
    editing::PictureBox* imgBild_ = nullptr;
    QWidget* picBild_ = nullptr;      // never shown; has the picture's size in pixels
    FrameStrip* fraBilder_ = nullptr; // for icons and cursors alone
    QPushButton* cmdOK_;              // the buttons' names are crossed: this one goes back,
    QPushButton* cmdZur_ck_;          // and this one opens the help
};

} // namespace commands
