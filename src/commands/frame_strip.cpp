#include "commands/frame_strip.h"

#include "app/named_control.h"
#include "app/settings.h"
#include "app/texts.h"
#include "platform/paths.h"
#include "store/fitting_names.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QListWidget>
#include <QMimeData>
#include <QPainter>
#include <QPushButton>
#include <QShortcut>
#include <QStyle>
#include <QUrl>
#include <QVBoxLayout>

#include <filesystem>
#include <string>
#include <utility>

namespace commands {
namespace {

constexpr app::TextPair kTitle{u"Bilder in der Datei:", u"Pictures in the file:"};
constexpr app::TextPair kCopy{u"&Kopieren", u"&Copy"};
constexpr app::TextPair kBits{u"%1 Bit", u"%1 bit"};
constexpr app::TextPair kThumbnail{u"Vorschau", u"Thumbnail"};
constexpr app::TextPair kBroken{u"beschädigt", u"damaged"};
constexpr app::TextPair kHotSpot{u"Punkt %1, %2", u"Spot %1, %2"};

constexpr QSize kIcon{64, 64};
constexpr int kCellWidth = 84; // four of them are in sight
constexpr int kCellMargin = 12;
constexpr int kImageRole = Qt::UserRole;

// For programs that take files, in a folder that nothing was handed out from yet: whoever took an
// earlier one may still read it. Empty when it cannot be written.
QString fileOf(const QImage& image, const QString& baseName) {
    static int number = 0; // of the window's thread
    try {
        const std::filesystem::path folder =
            app::settings().restoredTemporaryFolderPath() / "Frames" / std::to_string(++number);
        std::filesystem::create_directories(folder);
        const QString file =
            platform::fromFilePath(folder) +
            QStringLiteral("/%1 %2 x %3.png").arg(baseName).arg(image.width()).arg(image.height());
        return image.save(file) ? file : QString();
    } catch (const std::exception&) {
        return {}; // most programs take the image
    }
}

} // namespace

// A frame hands its image on as it is, with its alpha.
class FrameStrip::FrameList : public QListWidget {
  public:
    using QListWidget::QListWidget;

    void setFileBaseName(const QString& name) { fileBaseName_ = name; }

  protected:
    QMimeData* mimeData(const QList<QListWidgetItem*>& items) const override {
        auto mime = std::make_unique<QMimeData>();
        for (const QListWidgetItem* item : items) {
            const auto image = item->data(kImageRole).value<QImage>();
            mime->setImageData(image);
            if (const QString file = fileOf(image, fileBaseName_); !file.isEmpty()) {
                mime->setUrls({QUrl::fromLocalFile(file)});
            }
        }
        return mime.release();
    }
    QStringList mimeTypes() const override {
        return {QStringLiteral("application/x-qt-image"), QStringLiteral("text/uri-list")};
    }

  private:
    QString fileBaseName_;
};

namespace {

// In the middle of a square of its own, no larger than it is, so that sizes can be compared.
QIcon iconOf(const QImage& image, double screenRatio) {
    QPixmap square(kIcon * screenRatio);
    square.setDevicePixelRatio(screenRatio);
    square.fill(Qt::transparent);
    QSize size = image.size();
    if (size.width() > kIcon.width() || size.height() > kIcon.height()) {
        size.scale(kIcon, Qt::KeepAspectRatio);
    }
    QRect place(QPoint(0, 0), size.expandedTo({1, 1}));
    place.moveCenter(QRect(QPoint(0, 0), kIcon).center());
    QPainter painter(&square);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, size != image.size());
    painter.drawImage(place, image);
    painter.end();
    QIcon icon(square);
    icon.addPixmap(square, QIcon::Selected); // not tinted: colours are what is looked at
    return icon;
}

QStringList linesOf(const picture::IconFrame& frame) {
    QStringList lines{
        QStringLiteral("%1 \u00d7 %2").arg(frame.size.width()).arg(frame.size.height()),
        app::text(kBits).arg(frame.bitsPerPixel)};
    if (frame.hotSpot) {
        lines.append(app::text(kHotSpot).arg(frame.hotSpot->x()).arg(frame.hotSpot->y()));
    }
    if (frame.image.isNull()) {
        lines.append(app::text(kBroken));
    } else if (frame.isShown) {
        lines.append(app::text(kThumbnail));
    }
    return lines;
}

} // namespace

FrameStrip::FrameStrip(QWidget* parent)
    : QGroupBox(app::text(kTitle), parent),
      lvwBilder_(new FrameList(this)),
      cmdKopieren_(app::makeNamed<QPushButton>("cmdKopieren", app::text(kCopy), this)) {
    setObjectName(QStringLiteral("fraBilder"));
    lvwBilder_->setObjectName(QStringLiteral("lvwBilder"));
    lvwBilder_->setAccessibleName(app::text(kTitle));
    lvwBilder_->setViewMode(QListView::IconMode);
    lvwBilder_->setFlow(QListView::LeftToRight);
    lvwBilder_->setWrapping(false);
    lvwBilder_->setMovement(QListView::Static);
    lvwBilder_->setDragEnabled(true);
    lvwBilder_->setDragDropMode(QAbstractItemView::DragOnly);
    lvwBilder_->setIconSize(kIcon);
    auto* all = new QVBoxLayout(this);
    all->addWidget(lvwBilder_);
    all->addWidget(cmdKopieren_, 0, Qt::AlignRight);
    connect(cmdKopieren_, &QPushButton::clicked, this, &FrameStrip::copy);
    auto* keys = new QShortcut(QKeySequence::Copy, lvwBilder_);
    keys->setContext(Qt::WidgetShortcut);
    connect(keys, &QShortcut::activated, this, &FrameStrip::copy);
    connect(&job_, &app::Job::done, this, &FrameStrip::take);
    hide();
}

void FrameStrip::load(const store::Library& library, const store::GroupAddress& group,
                      const store::PictureEntry& picture) {
    clear();
    setVisible(picture.record.type == "ICO" || picture.record.type == "CUR");
    if (!isVisibleTo(parentWidget())) {
        return;
    }
    lvwBilder_->setFileBaseName(QString::fromStdString(store::fileBaseNameFor(picture.name)));
    makeRoomFor(picture.record.type == "CUR" ? 4 : 3);
    job_.start([library, group, name = picture.name] {
        try {
            return picture::iconFrames(store::readPicture(library, group, name).bytes);
        } catch (const std::exception&) {
            return std::vector<picture::IconFrame>(); // the preview shows nothing either
        }
    });
}

void FrameStrip::makeRoomFor(int lines) {
    const int height = kIcon.height() + kCellMargin + lines * lvwBilder_->fontMetrics().height();
    lvwBilder_->setGridSize({kCellWidth, height});
    lvwBilder_->setFixedHeight(height + style()->pixelMetric(QStyle::PM_ScrollBarExtent) +
                               2 * lvwBilder_->frameWidth());
}

void FrameStrip::clear() {
    job_.drop();
    lvwBilder_->clear();
    cmdKopieren_->setEnabled(false);
}

void FrameStrip::take() {
    const auto frames = std::exchange(job_.result(), {});
    for (const picture::IconFrame& frame : frames) {
        addFrame(frame);
    }
    setVisible(!frames.empty());
    cmdKopieren_->setEnabled(lvwBilder_->currentItem() != nullptr);
    emit loaded();
}

void FrameStrip::addFrame(const picture::IconFrame& frame) {
    const QStringList lines = linesOf(frame);
    auto* item = new QListWidgetItem(lines.join(u'\n'), lvwBilder_);
    item->setTextAlignment(Qt::AlignHCenter | Qt::AlignTop);
    item->setData(Qt::AccessibleTextRole, lines.join(QStringLiteral(", ")));
    if (frame.image.isNull()) {
        item->setFlags(Qt::NoItemFlags);
        return;
    }
    item->setData(kImageRole, frame.image);
    item->setIcon(iconOf(frame.image, devicePixelRatioF()));
    if (frame.isShown) {
        QFont font = item->font();
        font.setBold(true);
        item->setFont(font);
        lvwBilder_->setCurrentItem(item);
    }
}

void FrameStrip::copy() {
    if (const QListWidgetItem* item = lvwBilder_->currentItem()) {
        QGuiApplication::clipboard()->setImage(item->data(kImageRole).value<QImage>());
    }
}

} // namespace commands
