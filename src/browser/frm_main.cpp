#include "browser/frm_main.h"

#include "app/executor.h"
#include "app/help.h"
#include "app/long_operation.h"
#include "app/message_box.h"
#include "app/number_text.h"
#include "app/settings.h"
#include "app/texts.h"
#include "browser/damaged_report.h"
#include "browser/duplicate_watch.h"
#include "browser/find_panel.h"
#include "browser/first_steps.h"
#include "browser/group_browsing.h"
#include "browser/key_bindings.h"
#include "browser/main_layout.h"
#include "browser/main_menus.h"
#include "browser/picture_carrying.h"
#include "browser/picture_panel.h"
#include "browser/splitters.h"
#include "browser/status_line.h"
#include "browser/temporary_pictures.h"
#include "browser/view_choices.h"
#include "browser/window_state.h"
#include "commands/failure_report.h"
#include "commands/undo_steps.h"
#include "compound/error.h"
#include "groups/group_icons.h"
#include "groups/group_tree.h"
#include "picture/picture.h"
#include "platform/desktop_trash.h"
#include "platform/native_disk.h"

#include <QCloseEvent>
#include <QMenuBar>
#include <QWindow>

#include <chrono>
#include <utility>

namespace browser {
namespace {

constexpr std::chrono::milliseconds kOperationLockWait{300}; // a click may need three operations
constexpr int kRenamePicture = 400;
constexpr app::TextPair kTreeName{u"Gruppen", u"Groups"};
constexpr QSize kInitialSize(900, 640);

store::TwipSize measurePicture(std::span<const std::byte> bytes) {
    const picture::TwipSize size = picture::measure(bytes).twips;
    return {size.height, size.width};
}

store::Library libraryOf(const app::Settings& settings) {
    return {platform::nativeDisk(), settings.storagesFolderPath(), measurePicture,
            app::decimalSeparator().unicode(), kOperationLockWait};
}

WindowSize twipsOf(const QSize& pixels) {
    return {app::toTwips(pixels.width()), app::toTwips(pixels.height())};
}

} // namespace

frmMain::frmMain(StartMode mode, Noticing noticing)
    : mode_(mode),
      dispatcher_(*this),
      surface_(nullptr),
      tree_(nullptr),
      panel_(nullptr),
      menus_(nullptr),
      splitters_(nullptr),
      status_(nullptr),
      duplicates_(nullptr),
      firstSteps_(nullptr),
      find_(nullptr),
      carrying_(nullptr),
      watch_(noticing) {
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(app::kProgramTitle);
    setWindowIcon(groups::programIcon());
    auto* free = new QWidget(this);
    free->setMouseTracking(true);
    free->installEventFilter(this);
    setCentralWidget(free);
    surface_ = new QWidget(free);
    surface_->setMouseTracking(true);
    surface_->installEventFilter(this);
    tree_ = new groups::GroupTree(surface_);
    panel_ = new PicturePanel(surface_);
    panel_->setTabOrderAfter(tree_);
    splitters_ = new Splitters(surface_);
    status_ = new StatusLine(surface_);
    duplicates_ = new DuplicateWatch(this);
    firstSteps_ = new FirstSteps(surface_);
    firstSteps_->setTabOrderAfter(tree_);
    groups_ = std::make_unique<GroupBrowsing>(*tree_, *panel_, watch_);
    menus_ = new MainMenus(menuBar(), dispatcher_, this);
    find_ = new FindPanel(menuBar(), surface_);
    menus_->setPossible(commands::Command::Undo, false);
    history_.availabilityChanged = [this](bool any) {
        menus_->setPossible(commands::Command::Undo, any);
    };
    connectTree();
    connectPanel();
    connectWatch();
    connectFinding();
    carrying_ = new PictureCarrying(*this, *tree_, *panel_, *find_, this);
    carrying_->offerIn(*menus_);
    bindKeys({tree_, panel_->strip(), panel_->list(), menus_});
    setMinimumSize(app::toPixels(kMinimumWindowWidth, kMinimumWindowHeight));
    resize(kInitialSize);
}

// What the workers still have in hand uses the library's disk.
frmMain::~frmMain() {
    watch_.stop();
    find_->stop();
    panel_->stopLoading();
    duplicates_->stop();
    app::readers().finish();
    app::workers().finish();
}

void frmMain::connectTree() {
    connect(groups_.get(), &GroupBrowsing::editItemWanted, this, &frmMain::updateEditItem);
    // A box must not come up in the middle of what reads the library.
    connect(
        groups_.get(), &GroupBrowsing::filesSetAside, this,
        [this] {
            if (Activated_ && isVisible()) { // else the next start tells of them
                reportDamagedFiles(*library_, this);
            }
        },
        Qt::QueuedConnection);
    connect(tree_, &groups::GroupTree::popUpWanted, this,
            [this](const QPoint& position) { menus_->popUp(commands::BandId::Group, position); });
    connect(tree_, &groups::GroupTree::pointerMoved, panel_, &PicturePanel::hideToolTip);
}

void frmMain::connectPanel() {
    connect(panel_, &PicturePanel::menuStateWanted, this, &frmMain::updateMenuState);
    connect(panel_, &PicturePanel::editItemWanted, this, &frmMain::updateEditItem);
    connect(panel_, &PicturePanel::thumbnailsChanged, this,
            [this] { menus_->setThumbnails(panel_->choices(), panel_->GraphicalPreview()); });
    connect(panel_, &PicturePanel::picturePopUpWanted, this,
            [this](const QPoint& position) { menus_->popUp(commands::BandId::Picture, position); });
    connect(panel_, &PicturePanel::editWanted, this,
            [this] { dispatcher_.run(commands::Command::EditPicture, commands::Origin::Menu); });
    connect(panel_, &PicturePanel::editWantedByKey, this, [this] {
        panel_->awaitShown(); // whether it can be edited
        menus_->trigger(commands::Command::EditPicture);
    });
    connect(panel_, &PicturePanel::pictureRenamed, this,
            [this](const store::GroupAddress& group, const store::PictureName& from,
                   const store::PictureName& to) {
                history_.add(commands::pictureRenamed(group, from, to));
            });
    connect(panel_, &PicturePanel::renameFailed, this, &frmMain::tellRenameFailure);
    connect(panel_, &PicturePanel::pagesShown, status_, &StatusLine::showPages);
    connect(panel_, &PicturePanel::nothingShown, status_, &StatusLine::showNoGroup);
    connect(panel_, &PicturePanel::pictureDescribed, status_, &StatusLine::showSelection);
    connect(duplicates_, &DuplicateWatch::looked, status_, &StatusLine::tell);
    connect(splitters_, &Splitters::moved, this, [this] {
        placeParts();
        panel_->layOutSoon();
    });
}

void frmMain::connectWatch() {
    connect(groups_.get(), &GroupBrowsing::changesTaken, this, &frmMain::updateMenuState);
    finding::LibraryIndex* index = &find_->index();
    connect(&watch_, &LibraryWatch::changed, index, [index](const auto& changes) {
        if (changes.isReachable) {
            index->takeChanges(changes.files, changes.read);
        }
    });
    connect(&watch_, &LibraryWatch::remembered, index, [index](const auto& files) {
        std::vector<store::FileName> names;
        names.reserve(files.size());
        for (const groups::GroupFile& file : files) {
            names.push_back(file.file);
        }
        index->takeChanges(names, files);
    });
}

void frmMain::connectFinding() {
    connect(
        find_, &FindPanel::wanted, this,
        [this](const store::GroupAddress& group, const std::optional<store::PictureName>& picture) {
            if (groups_->goTo(group, picture)) {
                panel_->pictures()->setFocus();
                updateMenuState();
            }
        });
    connect(tree_, &groups::GroupTree::nodeClicked, find_, &FindPanel::leave);
    // Nodes come and go within one step; what is true at its end is shown.
    for (const auto change :
         {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved}) {
        connect(tree_->model(), change, this, &frmMain::showFirstSteps, Qt::QueuedConnection);
    }
    connect(tree_->model(), &QAbstractItemModel::modelReset, this, &frmMain::showFirstSteps,
            Qt::QueuedConnection);
    connect(firstSteps_, &FirstSteps::wanted, this, [this](commands::Command command) {
        dispatcher_.run(command, commands::Origin::Menu);
    });
}

void frmMain::showFirstSteps() {
    const bool isEmpty = groups_->isEmptyLibrary();
    if (isEmpty != firstSteps_->isVisibleTo(surface_)) {
        firstSteps_->setVisible(isEmpty);
        panel_->setReachable(!isEmpty);
        firstSteps_->raise();
    }
}

// --- Lifecycle

void frmMain::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    if (isLoaded_) {
        return;
    }
    isLoaded_ = true;
    load();
    connect(windowHandle(), &QWindow::screenChanged, panel_, &PicturePanel::layOutSoon);
    // Boxes and the first group come once the window is on the screen.
    QMetaObject::invokeMethod(this, &frmMain::activate, Qt::QueuedConnection);
}

void frmMain::load() {
    menus_->setCaptions();
    tree_->setAccessibleName(app::text(kTreeName));
    panel_->setCaptions();
    panel_->setChoices(readViewChoices());
    firstSteps_->setCaptions();
    find_->setCaptions();
    splitters_->setCaptions();
    splitters_->setColumns(readColumns());
    app::Settings& settings = app::settings();
    settings.readPaths();
    try {
        settings.makeTemporaryFolder();
    } catch (const compound::Error& error) {
        loadFailure_ = app::errorText(error);
    }
    library_.emplace(libraryOf(settings));
    panel_->setLibrary(*library_);
    find_->setLibrary(*library_);
    groups_->setLibrary(*library_);
    panel_->hideToolTip();
    panel_->setGraphicalPreview(true);
    placeParts();
}

void frmMain::activate() {
    FillTreeView();
    showFirstSteps();
    if (!loadFailure_.isEmpty()) {
        app::msgBox(loadFailure_, app::Buttons::Ok, app::kProgramTitle, this);
    }
    reportDamagedFiles(*library_, this);
    setCursor(Qt::WaitCursor);
    if (tree_->nodeCount() > 0) {
        SelectNode();
    }
    panel_->layOutGrid();
    SetImgScrollProperties();
    MiniVorschau(0);
    unsetCursor();
    Activated_ = true;
    updateMenuState();
    tree_->setFocus();
}

bool frmMain::isSettled() const {
    return Activated_ && panel_->isSettled() && !watch_.isLooking() && !duplicates_->isBusy();
}

void frmMain::closeEvent(QCloseEvent* event) {
    if (app::isLongOperationRunning()) {
        event->ignore();
        app::afterLongOperation(this, [this] { close(); });
        return;
    }
    event->accept();
    if (isLoaded_ && !isUnloaded_) {
        isUnloaded_ = true;
        unload();
        emit unloaded();
    }
}

void frmMain::unload() {
    watch_.stop();
    find_->stop();
    panel_->stopLoading();
    duplicates_->stop();
    app::closeHelp();
    removeTemporaryPictures(app::settings().temporaryFolderPath());
    saveSettings();
}

void frmMain::saveSettings() {
    if (!isLoaded_) {
        return;
    }
    app::Settings& settings = app::settings();
    // Before the first activation nothing is selected, whatever is remembered.
    if (const auto key = Activated_ ? groups_->keyToRemember() : std::nullopt) {
        settings.setCurrentGroup(*key);
    } else {
        settings.readCurrentGroup();
    }
    try {
        settings.save();
        // Inside another program's window the place is that program's choice.
        if (windowHandle() == nullptr || windowHandle()->parent() == nullptr) {
            saveWindowState(*this);
        }
        writeColumns(splitters_->columns());
        writeViewChoices(panel_->choices());
    } catch (const compound::Error& error) {
        app::msgBox(app::errorText(error), app::Buttons::Ok, app::kProgramTitle, this);
    }
}

void frmMain::PicturesArrived(const std::function<std::vector<store::PictureAddress>()>& arrived) {
    duplicates_->look(*library_, arrived);
}

void frmMain::TellResult(const QString& result) {
    status_->tell(result, {});
}

void frmMain::changeView(commands::ViewChange change) {
    if (change == commands::ViewChange::Find) {
        find_->start();
    } else if (change == commands::ViewChange::ReadAgain) {
        refresh();
    } else {
        panel_->changeThumbnails(change);
    }
}

void frmMain::HandOver(const QString& path) {
    handOverValue_ = path;
    emit PictureSelected(path);
}

void frmMain::Exit() {
    if (mode_ == StartMode::Server) {
        handOverValue_.clear();
    }
    leave();
}

void frmMain::ExitAfterHandOver() {
    leave();
}

// Started alone, a hidden window would leave a process that nobody can end.
void frmMain::leave() {
    if (mode_ == StartMode::Standalone) {
        close();
    } else {
        hide();
    }
}

// --- Layout

void frmMain::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    if (isMinimized()) {
        return;
    }
    // Window managers differ in how far they respect a window's minimum size.
    const WindowSize bounded = atLeastMinimum(twipsOf(size()));
    if (bounded != twipsOf(size())) {
        resize(app::toPixels(bounded.width, bounded.height));
    }
    placeParts();
    panel_->layOutSoon();
}

void frmMain::placeParts() {
    const int menuHeight = menuBar()->sizeHint().height();
    const int offset = app::toPixels(surfaceOffset(app::toTwips(menuHeight)));
    surface_->setGeometry(0, offset, width(), height() - menuHeight - offset);
    const WindowSize window = atLeastMinimum(twipsOf(size()));
    const MainLayout layout = layoutFor(window, splitters_->columns());
    tree_->setGeometry(app::toPixels(layout.tvwGruppen));
    panel_->place(layout);
    const QRect area = app::toPixels(layout.thumbnailArea);
    firstSteps_->setGeometry(area);
    find_->place(area, width());
    splitters_->place(layout, window);
    status_->setGeometry(app::toPixels(layout.statusLine));
}

bool frmMain::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseMove) {
        panel_->pointerOnFreeSurface();
    }
    return QMainWindow::eventFilter(watched, event);
}

// --- Groups

std::optional<commands::SelectedGroup> frmMain::selectedGroup() const {
    return tree_->selected();
}

void frmMain::FillTreeView() {
    groups_->fillTree();
}

void frmMain::SetCurrentGroup(const store::GroupAddress& group) {
    groups_->setCurrent(group);
}

void frmMain::SelectNode() {
    app::Settings& settings = app::settings();
    settings.readCurrentGroup();
    groups_->selectRemembered(settings.currentGroup());
}

void frmMain::TreeViewSelectNode(const store::GroupAddress& group) {
    if (groups_->select(group)) {
        SelectPicture();
        updateMenuState();
    }
}

void frmMain::TreeViewAdd(const store::GroupName& name) {
    groups_->add(name);
}

void frmMain::TreeViewRemove(const store::GroupAddress& group) {
    groups_->remove(group);
}

void frmMain::SelectFirstGroup() {
    groups_->selectFirst();
}

bool frmMain::isFinding() const {
    return find_->isBusy();
}

void frmMain::lookForChanges() {
    watch_.look();
}

void frmMain::refresh() {
    if (Activated_) {
        groups_->refresh();
        updateMenuState();
    }
}

void frmMain::copyPictures() {
    carrying_->copy(Carrying::ToCopy);
}

void frmMain::cutPictures() {
    carrying_->copy(Carrying::ToMove);
}

void frmMain::pastePictures() {
    carrying_->paste();
}

void frmMain::tellRenameFailure(const store::GroupAddress& group, const std::exception& failure) {
    commands::reportFailure(*this, commands::contextOf(tree_->find(group), {}), failure,
                            app::text(kRenamePicture), this);
}

int frmMain::GetNodeIndex(const QString& text) const {
    return tree_->GetNodeIndex(text);
}

// --- Menus

void frmMain::updateMenuState() {
    menus_->setState(selectedGroup() ? commands::Selection::Group : commands::Selection::None);
    menus_->setPossible(
        commands::Command::EditPicture,
        !shownPicture().isNone() &&
            commands::allowsEditing(panel_->shownType(), commands::EditItemCause::Group));
}

void frmMain::updateEditItem(commands::EditItemCause cause) {
    if (!shownPicture().isNone()) {
        menus_->setPossible(commands::Command::EditPicture,
                            commands::allowsEditing(panel_->shownType(), cause));
    }
}

// --- Pictures

const commands::ShownPicture& frmMain::shownPicture() const {
    return panel_->shownPicture();
}

std::unique_ptr<compound::Trash> frmMain::makeTrash() const {
    return std::make_unique<platform::DesktopTrash>();
}

std::vector<store::PictureName> frmMain::selectedPictures() const {
    const auto group = selectedGroup();
    if (!group || panel_->group() != group->address) {
        return {};
    }
    return panel_->selectedPictures();
}

void frmMain::selectAll() {
    panel_->selectAll();
}

void frmMain::ShowPictures(const store::GroupAddress& group,
                           const std::vector<store::PictureName>& pictures) {
    if (!tree_->selected() || tree_->selected()->address != group || panel_->group() != group) {
        TreeViewSelectNode(group);
        panel_->showGroupAnew();
    }
    panel_->select(pictures);
    updateMenuState();
}

void frmMain::awaitShown() {
    panel_->awaitShown();
}

void frmMain::Aktualisieren() {
    panel_->Aktualisieren();
}

void frmMain::PictureRenamed(const store::GroupAddress& group, const QString& name) {
    panel_->PictureRenamed(group, name);
}

void frmMain::PictureDeleted(const store::GroupAddress& group,
                             const std::optional<store::PictureName>& beside) {
    panel_->PictureDeleted(group, beside);
}

void frmMain::FillListView(const store::GroupAddress& group) {
    panel_->FillListView(group);
}

void frmMain::MiniVorschau(std::size_t startIndex) {
    panel_->MiniVorschau(startIndex);
}

void frmMain::SelectPicture() {
    panel_->SelectPicture();
}

void frmMain::SetImgScrollProperties() {
    panel_->SetImgScrollProperties();
}

void frmMain::ClearVorschau() {
    panel_->ClearVorschau();
}

void frmMain::NoPictures() {
    panel_->NoPictures();
}

void frmMain::NoToolTip() {
    panel_->NoToolTip();
}

void frmMain::ShowNoPicture() {
    panel_->ShowNoPicture();
}

bool frmMain::GraphicalPreview() const {
    return panel_->GraphicalPreview();
}

void frmMain::VorschauAktiviert() {
    panel_->VorschauAktiviert();
    menus_->setGraphicalPreview(true);
}

void frmMain::VorschauDeaktiviert() {
    panel_->VorschauDeaktiviert();
    menus_->setGraphicalPreview(false);
    updateMenuState();
}

} // namespace browser
