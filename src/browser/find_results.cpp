#include "browser/find_results.h"

#include "app/texts.h"
#include "browser/found_thumbnails.h"
#include "browser/picture_painting.h"
#include "browser/thumbnail_strip.h"
#include "groups/group_icons.h"

#include <QAbstractListModel>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QPainter>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace browser {
namespace {

constexpr app::TextPair kResults{u"Gefundene Bilder und Gruppen", u"Pictures and groups found"};
constexpr app::TextPair kNothing{u"Nichts gefunden", u"Nothing found"};
constexpr app::TextPair kOne{u"1 Treffer", u"1 match"};
constexpr app::TextPair kSeveral{u"%1 Treffer", u"%1 matches"};
constexpr app::TextPair kFirst{u"Die ersten %1 von %2 Treffern", u"The first %1 of %2 matches"};
constexpr app::TextPair kReading{u" – %1 von %2 Gruppendateien gelesen",
                                 u" – %1 of %2 group files read"};
constexpr int kTextWidth = 136; // pixels, from one result to the next
constexpr int kPadding = 8;

} // namespace

class FindResults::Model : public QAbstractListModel {
  public:
    Model(FoundThumbnails& thumbnails, FindResults* results)
        : QAbstractListModel(results), thumbnails_(thumbnails), results_(results) {}

    const finding::NameIndex::Result& result() const { return result_; }
    void setResult(const finding::NameIndex::Result& result) {
        beginResetModel();
        result_ = result;
        endResetModel();
    }

    const finding::Match& match(int row) const {
        return result_.matches[static_cast<std::size_t>(row)];
    }

    int rowOf(const QString& key) const {
        const auto found =
            std::find_if(result_.matches.begin(), result_.matches.end(),
                         [&](const finding::Match& match) { return keyOf(match) == key; });
        return found == result_.matches.end() ? -1
                                              : static_cast<int>(found - result_.matches.begin());
    }

    void refresh() {
        if (rowCount({}) > 0) {
            emit dataChanged(index(0), index(rowCount({}) - 1), {Qt::DecorationRole});
        }
    }

    int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(result_.matches.size());
    }

    QVariant data(const QModelIndex& index, int role) const override {
        const finding::Match& found = match(index.row());
        switch (role) {
        case Qt::DisplayRole:
            return QString(cut(found.name, Qt::ElideMiddle) + u'\n' +
                           cut(found.path, Qt::ElideLeft)); // its end is the group's name
        case Qt::ToolTipRole:
        case Qt::AccessibleTextRole:
            return QString(found.name + QLatin1String(", ") + found.path);
        case Qt::DecorationRole:
            return decorationOf(found);
        case Qt::SizeHintRole: // else all are as wide as the first one
            return results_->list_->gridSize();
        default:
            return {};
        }
    }

  private:
    QString cut(const QString& line, Qt::TextElideMode mode) const {
        return results_->list_->fontMetrics().elidedText(line, mode, kTextWidth - 2 * kPadding);
    }

    QVariant decorationOf(const finding::Match& found) const {
        if (!found.picture) {
            return groups::groupIcon(groups::GroupMark::None);
        }
        const double ratio = results_->devicePixelRatioF();
        const QSizeF area = ThumbnailStrip::pictureArea();
        QPixmap pixmap((area * ratio).toSize());
        pixmap.setDevicePixelRatio(ratio);
        pixmap.fill(Qt::transparent);
        if (const auto image = thumbnails_.find(found)) {
            QPainter painter(&pixmap);
            const QRectF rect({}, area);
            if (image->isNull()) {
                paintUndecodable(painter, rect, results_->palette());
            } else {
                paintCentred(painter, *image, rect, results_->palette());
            }
        }
        return pixmap;
    }

    finding::NameIndex::Result result_;
    FoundThumbnails& thumbnails_;
    FindResults* results_;
};

FindResults::FindResults(QWidget* parent)
    : QFrame(parent),
      thumbnails_(new FoundThumbnails(this)),
      model_(new Model(*thumbnails_, this)),
      status_(new QLabel(this)),
      list_(new QListView(this)) {
    setObjectName(QStringLiteral("fraFind"));
    setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    status_->setObjectName(QStringLiteral("lblFind"));
    status_->setTextFormat(Qt::PlainText);
    status_->setMargin(kPadding / 2);
    list_->setObjectName(QStringLiteral("lvwFind"));
    list_->setFrameShape(QFrame::NoFrame);
    list_->setViewMode(QListView::IconMode);
    list_->setMovement(QListView::Static);
    list_->setResizeMode(QListView::Adjust);
    list_->setUniformItemSizes(true);
    const QSize side = ThumbnailStrip::pictureArea().toSize();
    list_->setIconSize(side);
    list_->setGridSize(
        {kTextWidth, side.height() + 2 * list_->fontMetrics().lineSpacing() + 2 * kPadding});
    list_->setModel(model_);
    list_->installEventFilter(this);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(status_);
    column->addWidget(list_, 1);
    soon_.setSingleShot(true);
    connect(&soon_, &QTimer::timeout, this, &FindResults::bringThumbnails);
    connect(list_->verticalScrollBar(), &QScrollBar::valueChanged, &soon_,
            qOverload<>(&QTimer::start));
    connect(thumbnails_, &FoundThumbnails::loaded, model_, [this] { model_->refresh(); });
    connect(list_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &FindResults::currentChanged);
    connect(model_, &Model::modelReset, this, &FindResults::currentChanged);
    connect(list_, &QListView::clicked, this,
            [this](const QModelIndex& index) { choose(index.row()); });
    hide();
}

FindResults::~FindResults() = default;

void FindResults::setLibrary(const store::Library& library) {
    thumbnails_->setLibrary(library);
}

void FindResults::setCaptions() {
    list_->setAccessibleName(app::text(kResults));
}

void FindResults::showResult(const finding::NameIndex::Result& result) {
    const int row = list_->currentIndex().row();
    const QString current = row < 0 ? QString() : keyOf(model_->match(row));
    const int scrolled = list_->verticalScrollBar()->value();
    model_->setResult(result);
    if (const int again = current.isEmpty() ? -1 : model_->rowOf(current); again >= 0) {
        list_->setCurrentIndex(model_->index(again));
        list_->verticalScrollBar()->setValue(scrolled);
    }
    updateStatus();
    soon_.start();
}

void FindResults::showProgress(const ReadingProgress& progress) {
    progress_ = progress;
    updateStatus();
}

void FindResults::updateStatus() {
    const finding::NameIndex::Result& result = model_->result();
    const std::size_t shown = result.matches.size();
    QString text = app::text(kNothing);
    if (result.total > shown) {
        text = app::text(kFirst).arg(shown).arg(result.total);
    } else if (shown > 0) {
        text = app::counted(shown, kOne, kSeveral);
    }
    if (progress_.isReading) {
        text += app::text(kReading).arg(progress_.read).arg(progress_.all);
    }
    status_->setText(text);
}

void FindResults::forget() {
    model_->setResult({});
    thumbnails_->stop();
}

void FindResults::bringThumbnails() {
    std::vector<finding::Match> seen;
    for (int row = 0; row < model_->rowCount({}); ++row) {
        if (list_->visualRect(model_->index(row)).intersects(list_->viewport()->rect())) {
            seen.push_back(model_->match(row));
        }
    }
    thumbnails_->want(std::move(seen), devicePixelRatioF());
}

void FindResults::enter() {
    if (model_->rowCount({}) == 0) {
        return;
    }
    if (!list_->currentIndex().isValid()) {
        list_->setCurrentIndex(model_->index(0));
    }
    list_->setFocus();
}

void FindResults::chooseCurrent() {
    choose(std::max(0, list_->currentIndex().row()));
}

std::optional<finding::Match> FindResults::current() const {
    const QModelIndex index = list_->currentIndex();
    return index.isValid() ? std::optional(model_->match(index.row())) : std::nullopt;
}

void FindResults::choose(int row) {
    if (row < model_->rowCount({})) {
        const finding::Match match = model_->match(row); // the model may be emptied by it
        emit chosen(match);
    }
}

bool FindResults::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            chooseCurrent();
            return true;
        }
        if (key == Qt::Key_Escape) {
            emit left();
            return true;
        }
    }
    return QFrame::eventFilter(watched, event);
}

void FindResults::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    soon_.start();
}

} // namespace browser
