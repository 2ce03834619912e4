#include "app/help_window.h"

#include "app/texts.h"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QScreen>
#include <QShortcut>
#include <QSplitter>
#include <QToolBar>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QWindow>

#include <utility>

namespace app {

namespace {

constexpr TextPair kTitle = {u"Hilfe", u"Help"};
constexpr TextPair kBack = {u"Zurück", u"Back"};
constexpr TextPair kForward = {u"Vorwärts", u"Forward"};
constexpr TextPair kContents = {u"Inhalt", u"Contents"};
constexpr TextPair kSearch = {u"Auf der Seite suchen", u"Find on the page"};
constexpr TextPair kNoPage = {u"Diese Seite fehlt in der Hilfedatei:",
                              u"The help file lacks this page:"};
constexpr int kPageRole = Qt::UserRole;
constexpr QSize kWindowSize{1120, 760}; // the widest picture has room beside the contents
constexpr int kContentsWidth = 270;

const QString kScheme = QStringLiteral("help");

QUrl addressOf(const QString& page) {
    QUrl url;
    url.setScheme(kScheme);
    url.setPath(page);
    return url;
}

} // namespace

HelpBrowser::HelpBrowser(QWidget* parent) : QTextBrowser(parent) {}

void HelpBrowser::setFile(const HelpFile& file) {
    file_ = &file;
    document()->clear();
    clearHistory();
}

void HelpBrowser::showPage(const QString& page) {
    setSource(addressOf(page));
}

QString HelpBrowser::page() const {
    return loading_.path();
}

QVariant HelpBrowser::loadResource(int type, const QUrl& name) {
    const bool isPage = type == QTextDocument::HtmlResource;
    const QUrl url = loading_.resolved(name);
    if (isPage) {
        loading_ = url;
    }
    const auto bytes =
        file_ != nullptr && url.scheme() == kScheme ? file_->read(url.path()) : std::nullopt;
    if (!bytes && isPage) {
        return QString(QStringLiteral("<p>") + text(kNoPage).toHtmlEscaped() +
                       QStringLiteral("</p><p>") + url.path().toHtmlEscaped() +
                       QStringLiteral("</p>"));
    }
    return bytes ? QVariant(*bytes) : QVariant();
}

void HelpBrowser::doSetSource(const QUrl& name, QTextDocument::ResourceType type) {
    const QString scheme = loading_.resolved(name).scheme();
    if (scheme == kScheme) {
        QTextBrowser::doSetSource(
            name, type == QTextDocument::UnknownResource ? QTextDocument::HtmlResource : type);
    } else if (scheme == QLatin1String("http") || scheme == QLatin1String("https")) {
        QDesktopServices::openUrl(name);
    }
}

HelpWindow::HelpWindow()
    : contents_(new QTreeWidget), browser_(new HelpBrowser(this)), search_(new QLineEdit) {
    setObjectName(QStringLiteral("helpWindow"));
    contents_->setObjectName(QStringLiteral("contents"));
    contents_->setHeaderHidden(true);
    browser_->setObjectName(QStringLiteral("page"));
    build();
    resize(kWindowSize.boundedTo(screen()->availableSize()));
    contents_->setFocus();
    connect(contents_, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
        const QString page = item != nullptr ? item->data(0, kPageRole).toString() : QString();
        if (!page.isEmpty() && page != browser_->page()) {
            browser_->showPage(page);
        }
    });
    connect(browser_, &QTextBrowser::sourceChanged, this, &HelpWindow::pageChanged);
}

void HelpWindow::build() {
    auto* bar = new QToolBar;
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    const auto addStep = [&](const char* name, QStyle::StandardPixmap icon, const TextPair& caption,
                             void (QTextBrowser::*go)(), void (QTextBrowser::*isPossible)(bool),
                             QKeySequence::StandardKey key) {
        QAction* step = bar->addAction(style()->standardIcon(icon), text(caption));
        step->setObjectName(QLatin1String(name));
        step->setShortcut(key);
        step->setEnabled(false);
        connect(step, &QAction::triggered, browser_, go);
        connect(browser_, isPossible, step, &QAction::setEnabled);
    };
    addStep("back", QStyle::SP_ArrowBack, kBack, &QTextBrowser::backward,
            &QTextBrowser::backwardAvailable, QKeySequence::Back);
    addStep("forward", QStyle::SP_ArrowForward, kForward, &QTextBrowser::forward,
            &QTextBrowser::forwardAvailable, QKeySequence::Forward);
    addSearch(*bar);
    contents_->setAccessibleName(text(kContents));
    auto* parts = new QSplitter;
    parts->addWidget(contents_);
    parts->addWidget(browser_);
    parts->setSizes({kContentsWidth, kWindowSize.width() - kContentsWidth});
    parts->setStretchFactor(1, 1);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->addWidget(bar);
    column->addWidget(parts, 1);
    connect(new QShortcut(QKeySequence(Qt::Key_Escape), this), &QShortcut::activated, this,
            &QWidget::close);
}

void HelpWindow::addSearch(QToolBar& bar) {
    auto* space = new QWidget;
    space->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    bar.addWidget(space);
    search_->setObjectName(QStringLiteral("search"));
    search_->setPlaceholderText(text(kSearch));
    search_->setAccessibleName(text(kSearch));
    search_->setClearButtonEnabled(true);
    search_->setMaximumWidth(kContentsWidth);
    bar.addWidget(search_);
    connect(search_, &QLineEdit::textEdited, this, [this] {
        browser_->moveCursor(QTextCursor::Start);
        findNext();
    });
    connect(search_, &QLineEdit::returnPressed, this, &HelpWindow::findNext);
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, this, [this] {
        search_->setFocus();
        search_->selectAll();
    });
}

// After the last place comes the first one again.
void HelpWindow::findNext() {
    if (!browser_->find(search_->text())) {
        browser_->moveCursor(QTextCursor::Start);
        browser_->find(search_->text());
    }
}

void HelpWindow::showPage(std::unique_ptr<HelpFile> file, const QString& page, QWidget* owner) {
    if (!file_ || file_->path() != file->path()) {
        setFile(std::move(file));
    }
    browser_->showPage(page);
    standInFrontOf(owner);
}

void HelpWindow::setFile(std::unique_ptr<HelpFile> file) {
    browser_->setFile(*file);
    file_ = std::move(file);
    fillContents();
}

void HelpWindow::fillContents() {
    const QSignalBlocker quiet(contents_);
    contents_->clear();
    std::vector<QTreeWidgetItem*> above; // the last item of each depth
    for (const HelpEntry& entry : file_->contents()) {
        above.resize(std::min(above.size(), static_cast<std::size_t>(entry.depth)));
        auto* item =
            above.empty() ? new QTreeWidgetItem(contents_) : new QTreeWidgetItem(above.back());
        item->setText(0, entry.title);
        item->setData(0, kPageRole, entry.page);
        above.push_back(item);
    }
    contents_->expandAll();
}

void HelpWindow::pageChanged() {
    setWindowTitle(browser_->documentTitle() + QStringLiteral(" - ") + text(kTitle));
    const QSignalBlocker quiet(contents_);
    for (QTreeWidgetItemIterator item(contents_); *item != nullptr; ++item) {
        if ((*item)->data(0, kPageRole).toString() == browser_->page()) {
            contents_->setCurrentItem(*item);
            return;
        }
    }
    contents_->setCurrentItem(nullptr);
}

// A modal dialog blocks every window but those that stand before it.
void HelpWindow::standInFrontOf(QWidget* owner) {
    winId(); // makes the native window, which alone knows whom it stands before
    QWindow* front = owner != nullptr ? owner->window()->windowHandle() : nullptr;
    if (windowHandle()->transientParent() != front) {
        hide();
        windowHandle()->setTransientParent(front);
    }
    show();
    raise();
    activateWindow();
}

} // namespace app
