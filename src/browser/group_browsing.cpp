#include "browser/group_browsing.h"

#include "app/long_operation.h"
#include "browser/library_watch.h"
#include "browser/picture_panel.h"
#include "groups/group_tree.h"
#include "groups/library_reading.h"

#include <chrono>

namespace browser {

using groups::Reveal;

namespace {

constexpr std::chrono::milliseconds kRefreshLockWait{1000};
constexpr std::chrono::milliseconds kRetryLockWait{300};

store::FileName fileOf(const QString& key) {
    return store::addressOf(key.toStdU16String()).file;
}

} // namespace

GroupBrowsing::GroupBrowsing(groups::GroupTree& tree, PicturePanel& panel, LibraryWatch& watch)
    : tree_(tree), panel_(panel), watch_(watch) {
    connect(&watch_, &LibraryWatch::changed, this, &GroupBrowsing::takeChanges);
    connect(&tree_, &groups::GroupTree::nodeClicked, this, &GroupBrowsing::nodeClicked);
    connect(&tree_, &groups::GroupTree::selectionCleared, this, &GroupBrowsing::selectionCleared);
    // Rereading rebuilds the very node whose event asks for it.
    connect(&tree_, &groups::GroupTree::retryWanted, this, &GroupBrowsing::retry,
            Qt::QueuedConnection);
}

void GroupBrowsing::setLibrary(const store::Library& library) {
    library_ = &library;
    watch_.start(library, [this] { return panel_.shownPictures(); });
}

void GroupBrowsing::fillTree() {
    app::LongOperation operation = app::readingLibrary();
    operation.counting = app::LongOperation::Counting::Pieces;
    const auto reading = app::resultOfLong<groups::LibraryReading>(
        operation, tree_.window(), [this](store::Progress& progress) {
            return groups::readLibrary(*library_, store::LockBudget(kRefreshLockWait), progress);
        });
    isReachable_ = reading.reachable;
    tree_.rebuild(reading.files);
    watch_.remember(reading.files);
    if (reading.setAside > 0) {
        emit filesSetAside();
    }
}

void GroupBrowsing::refresh() {
    const QString key = awaitedKey_.isEmpty() ? tree_.selectedKey() : awaitedKey_;
    fillTree();
    if (key.isEmpty()) {
        showSelected(); // nothing, also of a group that went away
    } else {
        selectAgain(key);
    }
}

void GroupBrowsing::selectAgain(const QString& key) {
    const bool wasAwaited = !awaitedKey_.isEmpty();
    if (tree_.selectKey(key, wasAwaited ? Reveal::Unfold : Reveal::KeepFolded)) {
        awaitedKey_.clear();
        CurrentGroup_ = key;
        if (wasAwaited || !panel_.group() || tree_.selectedIsMarked()) {
            showSelected(); // whose pictures become readable, or are not any longer
        } else {
            panel_.Aktualisieren();
        }
    } else if (isInMarkedFile(key)) {
        awaitedKey_ = key;
        tree_.select(store::topLevelAddress(fileOf(key).text));
        showSelected();
    } else {
        awaitedKey_.clear();
        tree_.selectFirst(Reveal::KeepFolded);
        showSelected();
    }
}

void GroupBrowsing::selectRemembered(const QString& key) {
    tree_.selectKey(key);
    // Nothing waits for the pictures of a group that is known to be locked.
    if (const auto selected = tree_.selected(); selected && !tree_.selectedIsMarked()) {
        panel_.setGroup(selected->address);
    }
    if (tree_.selectedKey() != key && isInMarkedFile(key)) {
        awaitedKey_ = key;
    }
    // The first click on the selected node shall fill the view anew.
    CurrentGroup_ = tree_.firstNodeText();
}

bool GroupBrowsing::isEmptyLibrary() const {
    return isReachable_ && tree_.topLevelItemCount() == 0;
}

std::optional<QString> GroupBrowsing::keyToRemember() const {
    if (!isReachable_) {
        return std::nullopt;
    }
    return awaitedKey_.isEmpty() ? tree_.selectedKey() : awaitedKey_;
}

void GroupBrowsing::setCurrent(const store::GroupAddress& group) {
    panel_.setGroup(group);
    CurrentGroup_ = QString::fromStdU16String(store::keyOf(group));
}

bool GroupBrowsing::select(const store::GroupAddress& group) {
    awaitedKey_.clear();
    if (!tree_.select(group)) {
        showSelected();
        return false;
    }
    setCurrent(group);
    return true;
}

void GroupBrowsing::add(const store::GroupName& name) {
    awaitedKey_.clear();
    watch_.lookAnew();
    const QString text = QString::fromStdU16String(name.text);
    const store::GroupAddress group = store::topLevelAddress(name.text);
    if (!tree_.find(group)) { // it may have been noticed while the command told of it
        tree_.addTopLevelNode(name);
    }
    tree_.selectKey(text + u'a');
    panel_.setGroup(group);
    CurrentGroup_ = text;
    panel_.showGroupAnew();
}

bool GroupBrowsing::goTo(const store::GroupAddress& group,
                         const std::optional<store::PictureName>& picture) {
    if (!tree_.find(group)) {
        return false;
    }
    awaitedKey_.clear();
    tree_.select(group);
    if (tree_.selectedIsMarked() || !picture) {
        showSelected();
    } else {
        setCurrent(group);
        panel_.showGroupAt(*picture);
    }
    return true;
}

void GroupBrowsing::remove(const store::GroupAddress& group) {
    watch_.lookAnew();
    tree_.remove(group);
}

void GroupBrowsing::selectFirst() {
    awaitedKey_.clear();
    tree_.selectFirst();
    showSelected();
}

void GroupBrowsing::showSelected() {
    const auto selected = tree_.selected();
    CurrentGroup_ = tree_.selectedKey();
    if (!selected) {
        panel_.showNothing();
        return;
    }
    panel_.setGroup(tree_.selectedIsMarked() ? std::nullopt : std::optional(selected->address));
    panel_.showGroupAnew();
}

void GroupBrowsing::selectionCleared() {
    awaitedKey_.clear();
    showSelected();
}

void GroupBrowsing::nodeClicked() {
    const auto selected = tree_.selected();
    if (!selected) {
        return;
    }
    awaitedKey_.clear();
    // A file that could not be read is tried once more before anything waits for its pictures.
    const bool isMarked = tree_.selectedIsMarked();
    panel_.setGroup(isMarked ? std::nullopt : std::optional(selected->address));
    if (tree_.selectedKey() != CurrentGroup_) {
        CurrentGroup_ = tree_.selectedKey();
        panel_.showGroup();
    }
    emit editItemWanted(commands::EditItemCause::Group);
    if (isMarked) {
        QMetaObject::invokeMethod(
            this, [this, file = selected->address.file] { retry(file); }, Qt::QueuedConnection);
    }
}

void GroupBrowsing::retry(const store::FileName& file) {
    if (!tree_.isMarked(file)) {
        return; // read meanwhile
    }
    const auto selected = tree_.selected();
    const bool wasSelected = selected && selected->address.file == file;
    const auto reading = app::resultOfReading(tree_.window(), [&] {
        return groups::readGroupFileAgain(*library_, file, store::LockBudget(kRetryLockWait));
    });
    if (!reading) {
        emit filesSetAside();
    }
    tree_.replaceFile(file, reading);
    if (wasSelected && !tree_.selectedIsMarked()) {
        if (fileOf(awaitedKey_) == file && !tree_.selectKey(awaitedKey_)) {
            tree_.select(store::topLevelAddress(file.text));
        }
        awaitedKey_.clear();
        showSelected();
    }
}

void GroupBrowsing::takeChanges(const groups::LibraryChanges& changes) {
    if (!changes.isReachable) {
        return; // what is shown may come back as it was
    }
    isReachable_ = true;
    const QString selected = tree_.selectedKey();
    const bool wasMarked = tree_.selectedIsMarked();
    const bool isToFollow = changes.moved && panel_.group() == changes.moved->from;
    tree_.takeChanges(changes.files, changes.read, changes.moved);
    if (changes.setAside > 0) {
        emit filesSetAside();
    }
    if (isToFollow && goTo(changes.moved->to, panel_.shownPicture().name())) {
        emit changesTaken();
        return;
    }
    if (!awaitedKey_.isEmpty() && !isInMarkedFile(awaitedKey_)) {
        selectAgain(awaitedKey_);
    } else if (tree_.selectedKey() != selected || tree_.selectedIsMarked() != wasMarked) {
        selectAgain(selected);
    } else if (changes.content && !panel_.takeChanges(*changes.content)) {
        watch_.lookAnew(changes.content->asked.group.file);
    }
    emit changesTaken();
}

bool GroupBrowsing::isInMarkedFile(const QString& key) const {
    return tree_.isMarked(fileOf(key));
}

} // namespace browser
