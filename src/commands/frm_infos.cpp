#include "commands/frm_infos.h"

#include "app/help.h"
#include "app/long_operation.h"
#include "app/modal_dialog.h"
#include "app/named_control.h"
#include "app/number_text.h"
#include "app/texts.h"
#include "app/twips.h"
#include "commands/frame_strip.h"
#include "editing/picture_box.h"
#include "editing/screen_place.h"
#include "picture/picture.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

#include <algorithm>
#include <cmath>

namespace commands {
namespace {

constexpr int kCaption = 700;
constexpr int kProperties = 701;
constexpr int kWidth = 702;
constexpr int kHeight = 703;
constexpr int kSize = 704;
constexpr int kType = 705;
constexpr int kUnit = 706;
constexpr int kPreview = 707;
constexpr int kBack = 708;
constexpr int kHelp = 709;
constexpr app::TextPair kPixels{u"&Pixel", u"&Pixels"};
constexpr app::TextPair kTwips{u"&Twips", u"&Twips"};

constexpr double kBoxSide = 2175;
constexpr double kBoxLeft = 90;
constexpr double kBoxBelowTitle = 120;
constexpr double kFrameSlack = 90;

constexpr int kSmallestSide = 1; // pixels, however slim the picture is

// A wide picture: full width, centred from the top where it is now.
app::TwipRect ReduceHeight(app::TwipRect place, int height, int width) {
    place.left = kBoxLeft;
    place.width = kBoxSide;
    place.height = static_cast<double>(height) / width * kBoxSide;
    place.top += (kBoxSide - place.height) / 2;
    return place;
}

// A tall picture: full height, centred from the left edge of the box.
app::TwipRect ReduceWidth(app::TwipRect place, int height, int width) {
    place.left = kBoxLeft;
    place.height = kBoxSide;
    place.width = static_cast<double>(width) / height * kBoxSide;
    place.left += (kBoxSide - place.width) / 2;
    return place;
}

app::TwipRect ToBig(const app::TwipRect& place, int height, int width) {
    if (height == width || height == 0 || width == 0) {
        return place;
    }
    return height < width ? ReduceHeight(place, height, width) : ReduceWidth(place, height, width);
}

QRect boxFor(const app::TwipRect& place, const QSize& picture) {
    QRect box = app::toPixels(ToBig(place, picture.height(), picture.width()));
    box.setSize(box.size().expandedTo({kSmallestSide, kSmallestSide}));
    return box;
}

// Without a decimal comma the first digit alone: so it is wanted.
QString sizeText(std::uint64_t bytes) {
    const QString number = app::numberText(static_cast<float>(bytes) / 1024.0F);
    return (number.contains(u',') ? app::cutBehindComma(number, 1) : number.left(1)) +
           QLatin1String(" KB");
}

// As a label shows it; 0 for what is no number.
double numberOf(const QLabel* label) {
    return label->text().replace(app::decimalSeparator(), u'.').toDouble();
}

} // namespace

frmInfos::frmInfos(QWidget* owner)
    : QDialog(owner),
      lblName2_(app::makePlainLabel("lblName2", this)),
      cmdOK_(nullptr),
      cmdZur_ck_(nullptr) {
    setObjectName(QStringLiteral("frmInfos"));
    setWindowTitle(app::text(kCaption));
    arrange();
    connectControls();
}

QLabel* frmInfos::addProperty(QGridLayout* grid, int captionId, const char* captionName,
                              const char* valueName) {
    auto* caption = app::makePlainLabel(captionName, this);
    caption->setText(app::text(captionId));
    auto* value = app::makePlainLabel(valueName, this);
    value->setAccessibleDescription(app::text(captionId));
    const int row = grid->rowCount();
    grid->addWidget(caption, row, 0);
    grid->addWidget(value, row, 1);
    return value;
}

QGroupBox* frmInfos::makeProperties() {
    auto* fraInfo = app::makeNamed<QGroupBox>("fraInfo", app::text(kProperties), this);
    auto* grid = new QGridLayout(fraInfo);
    grid->setHorizontalSpacing(16);
    grid->setColumnStretch(1, 1);
    lblBreite2_ = addProperty(grid, kWidth, "Label2", "lblBreite2");
    lblH_he2_ = addProperty(grid, kHeight, "Label3", "lblH_he2");
    lblSize2_ = addProperty(grid, kSize, "Label4", "lblSize2");
    lblDateiTyp_ = addProperty(grid, kType, "Label5", "lblDateiTyp");
    fraInfo->setMinimumWidth(200);
    return fraInfo;
}

QGroupBox* frmInfos::makeUnit() {
    auto* fraEinheit = app::makeNamed<QGroupBox>("fraEinheit", app::text(kUnit), this);
    optPixel_ = app::makeNamed<QRadioButton>("optPixel", app::text(kPixels), fraEinheit);
    optTwip_ = app::makeNamed<QRadioButton>("optTwip", app::text(kTwips), fraEinheit);
    auto* row = new QHBoxLayout(fraEinheit);
    row->addWidget(optPixel_);
    row->addWidget(optTwip_);
    return fraEinheit;
}

QGroupBox* frmInfos::makePreview() {
    auto* fraVorschau = app::makeNamed<QGroupBox>("fraVorschau", app::text(kPreview), this);
    // How high the title stands depends on the desktop's font.
    const double top = app::toTwips(fraVorschau->contentsRect().top()) + kBoxBelowTitle;
    designPlace_ = {kBoxLeft, top, kBoxSide, kBoxSide};
    fraVorschau->setFixedWidth(app::toPixels(kBoxLeft + kBoxSide + kFrameSlack));
    fraVorschau->setMinimumHeight(app::toPixels(top + kBoxSide + kFrameSlack));
    imgBild_ = app::makeNamed<editing::PictureBox>("imgBild", fraVorschau);
    imgBild_->setAccessibleName(app::text(kPreview));
    picBild_ = app::makeNamed<QWidget>("picBild", fraVorschau);
    picBild_->hide();
    return fraVorschau;
}

void frmInfos::arrange() {
    auto* facts = new QGridLayout;
    facts->setSpacing(12);
    facts->addWidget(makeProperties(), 0, 0);
    facts->addWidget(makeUnit(), 1, 0);
    facts->addWidget(makePreview(), 0, 1, 2, 1);
    facts->setColumnStretch(0, 1);

    fraBilder_ = new FrameStrip(this);
    cmdOK_ = app::makeNamed<QPushButton>("cmdOK", app::text(kBack), this);
    cmdOK_->setDefault(true);
    cmdZur_ck_ = app::makeNamed<QPushButton>("cmdZur_ck", app::text(kHelp), this);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addStretch();
    buttons->addWidget(cmdOK_);
    buttons->addWidget(cmdZur_ck_);

    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(16, 16, 16, 14);
    all->setSpacing(12);
    all->addWidget(lblName2_);
    all->addLayout(facts);
    all->addWidget(fraBilder_);
    all->addLayout(buttons);
    all->setSizeConstraint(QLayout::SetFixedSize);
}

void frmInfos::connectControls() {
    // Every click converts what is shown, also a click on the unit that is chosen.
    connect(optPixel_, &QRadioButton::clicked, this,
            [this] { convert([](double twips) { return twips / app::kTwipsPerPixel; }); });
    connect(optTwip_, &QRadioButton::clicked, this,
            [this] { convert([](double pixels) { return pixels * app::kTwipsPerPixel; }); });
    connect(imgBild_, &editing::PictureBox::loaded, this,
            [this](const picture::PictureFacts& facts) {
                picBild_->resize(facts.pixels);
                VorschauAnpassen();
            });
    connect(fraBilder_, &FrameStrip::loaded, this, &QWidget::adjustSize);
    connect(cmdOK_, &QPushButton::clicked, this, &QDialog::reject);
    app::offerHelp(*this, cmdZur_ck_, app::HelpTopic::PictureInformation);
}

void frmInfos::openFor(const store::Library& library, const store::GroupAddress& group,
                       const store::PictureName& name) {
    const auto picture = app::resultOfReading(
        parentWidget(), [&] { return store::describePicture(library, group, name); });
    showFacts(picture);
    loadPreview(library, group, name);
    fraBilder_->load(library, group, picture);
    optPixel_->setChecked(true);
    ensurePolished();
    adjustSize();
    editing::centreOnScreen(*this);
    cmdOK_->setFocus();
    app::execModally(*this);
    imgBild_->clear();
    fraBilder_->clear();
}

void frmInfos::showFacts(const store::PictureEntry& picture) {
    lblName2_->setText(QString::fromStdU16String(picture.name.text));
    lblSize2_->setText(sizeText(picture.bytes));
    lblBreite2_->setText(app::numberText(picture.record.width));
    lblH_he2_->setText(app::numberText(picture.record.height));
    lblDateiTyp_->setText(QString::fromStdString(picture.record.type));
}

// The facts about a picture that nobody can decode are worth showing without it.
void frmInfos::loadPreview(const store::Library& library, const store::GroupAddress& group,
                           const store::PictureName& name) {
    picBild_->resize(0, 0);
    VorschauAnpassen();
    imgBild_->load(
        [library, group, name] { return store::readPicture(library, group, name).bytes; },
        [place = designPlace_](const picture::PictureFacts& facts) {
            return boxFor(place, facts.pixels).size();
        });
}

// From the design's place each time: the dialog is used again and again.
void frmInfos::VorschauAnpassen() {
    imgBild_->setGeometry(boxFor(designPlace_, picBild_->size()));
}

void frmInfos::convert(double (*toOtherUnit)(double)) {
    for (QLabel* label : {lblBreite2_, lblH_he2_}) {
        label->setText(app::numberText(std::trunc(toOtherUnit(numberOf(label)))));
    }
}

} // namespace commands
