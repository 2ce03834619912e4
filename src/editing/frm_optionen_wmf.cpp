#include "editing/frm_optionen_wmf.h"

#include "app/colours.h"
#include "app/help.h"
#include "app/long_operation.h"
#include "app/message_box.h"
#include "app/modal_dialog.h"
#include "app/texts.h"
#include "editing/screen_place.h"
#include "editing/vector_box.h"
#include "picture/picture.h"
#include "store/picture_operations.h"

#include <QPainter>
#include <QShowEvent>

#include <algorithm>

namespace editing {

namespace {

constexpr double kFirstSide = 4005; // of the square that the picture is fitted into, twips
constexpr double kMargin = 30;

constexpr app::TextPair kTitle = {u"%1 – Vektorbild", u"%1 – Vector picture"};
constexpr app::TextPair kReading = {u"Das Bild wird gelesen", u"The picture is being read"};
constexpr app::TextPair kDescription = {u"Vektorbild", u"Vector picture"};

// The largest square that leaves the margin on all sides, in the middle of the window.
app::TwipRect areaOf(const QSize& window) {
    const double width = app::toTwips(window.width());
    const double height = app::toTwips(window.height());
    const double side = std::max(0.0, std::min(width, height) - 2 * kMargin);
    return {(width - side) / 2, (height - side) / 2, side, side};
}

// A title may hold the sign under which Qt marks changed documents; doubled it is shown.
QString asTitle(const QString& text) {
    return QString(text).replace(QLatin1String("[*]"), QLatin1String("[*][*]"));
}

} // namespace

frmOptionenWMF::frmOptionenWMF(QWidget* owner)
    : QDialog(owner), Vector_(new VectorBox(this)), picBild_(new QWidget(this)) {
    setObjectName(QStringLiteral("frmOptionenWMF"));
    setModal(true);
    app::offerHelp(*this, app::HelpTopic::BitmapEditor);
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    Vector_->setObjectName(QStringLiteral("Vector"));
    Vector_->setFocusPolicy(Qt::StrongFocus);
    picBild_->setObjectName(QStringLiteral("picBild"));
    picBild_->hide();
    const double side = kFirstSide + 2 * kMargin;
    setMinimumSize(app::toPixels(side, side));
    resize(minimumSize());
}

void frmOptionenWMF::openFor(const store::Library& library, const PictureInGroup& picture) {
    try {
        load(library, picture);
    } catch (const std::exception& failure) {
        app::msgBox(unreadableText(picture, failure), app::Buttons::Ok, app::kProgramTitle,
                    parentWidget());
        return;
    }
    app::execModally(*this);
    Vector_->clear(); // the window is kept for the next picture, this one's memory is not
}

void frmOptionenWMF::load(const store::Library& library, const PictureInGroup& picture) {
    VorschauAnpassen(library, picture);
    const QString name = QString::fromStdU16String(picture.name.text);
    setWindowTitle(asTitle(app::text(kTitle).arg(name)));
    Vector_->setAccessibleName(name);
    Vector_->setAccessibleDescription(app::text(kDescription));
    setWindowState(Qt::WindowNoState);
    resize(minimumSize());
    centreOnScreen(*this);
}

void frmOptionenWMF::VorschauAnpassen(const store::Library& library,
                                      const PictureInGroup& picture) {
    struct Read {
        store::PictureRecord record;
        picture::Picture picture;
    };
    auto [record, decoded] =
        app::resultOfLong<Read>({app::text(kReading)}, parentWidget(), [&](store::Progress&) {
            const auto stored = store::readPicture(library, picture.group, picture.name);
            return Read{stored.record, picture::decode(stored.bytes)};
        });
    height_ = double{record.height};
    width_ = double{record.width};
    picBild_->resize(decoded.facts().pixels);
    fit();
    Vector_->setPicture(std::move(decoded));
}

void frmOptionenWMF::fit() {
    area_ = areaOf(size());
    if (height_ == width_ || height_ <= 0 || width_ <= 0) {
        Normal();
    } else if (height_ > width_) {
        ReduceWidth();
    } else {
        ReduceHeight();
    }
    const QRect pixels = app::toPixels(vectorRect_);
    Vector_->setGeometry({pixels.topLeft(), pixels.size().expandedTo({1, 1})});
}

void frmOptionenWMF::Normal() {
    vectorRect_ = area_;
}

void frmOptionenWMF::ReduceWidth() {
    const double width = width_ / height_ * area_.width;
    vectorRect_ = {(area_.width - width) / 2 + area_.left, area_.top, width, area_.height};
}

void frmOptionenWMF::ReduceHeight() {
    const double height = height_ / width_ * area_.height;
    vectorRect_ = {area_.left, (area_.height - height) / 2 + area_.top, area_.width, height};
}

void frmOptionenWMF::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    fit();
    update();
}

void frmOptionenWMF::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(app::toPixels(area_), app::paperColor(palette()));
}

void frmOptionenWMF::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!event->spontaneous()) {
        centreOnScreen(*this);
    }
}

} // namespace editing
