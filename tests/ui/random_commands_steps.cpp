// The commands on groups and pictures, and the choosing of both.
#include "app/number_text.h"
#include "app/settings.h"
#include "app/texts.h"
#include "ui/random_commands_fixture.h"

#include <QClipboard>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMimeData>
#include <QScrollBar>
#include <QSet>
#include <QTest>

using library_model::Address;
using library_model::GroupNameTrial;
using library_model::isSameName;
using library_model::Source;

// Names of groups that are there, and what else their files hold, are the ones that collide.
GroupNameTrial RandomCommands::anyGroupName() {
    if (oneIn(10) && screen_.selected) {
        const QString name = screen_.selected->file + "Info";
        return {name, name.size() <= 27, name.size() <= 31};
    }
    return oneIn(2) ? GroupNameTrial{QStringLiteral("G%1").arg(below(12)), true, true}
                    : anyOf(library_model::groupNameTrials());
}

RandomCommands::Answer RandomCommands::anyAnswer() {
    const Answer answer = oneIn(3) ? Answer::No : Answer::Yes;
    addNote(answer == Answer::Yes ? " (Yes)" : " (No)");
    return answer;
}

QString RandomCommands::anyPictureName() {
    return oneIn(3) ? anyOf(library_model::pictureNameTrials())
                    : QStringLiteral("P%1").arg(below(30));
}

void RandomCommands::tryNames(QDialog& dialog, const char* fieldName, const char* cancelButton,
                              const QString& oldName, const NameTrial& enterName) {
    auto* field = dialog.findChild<QLineEdit*>(fieldName);
    EXPECT_EQ(plain(field->text()), plain(oldName));
    EXPECT_EQ(plain(field->selectedText()), plain(oldName));
    for (int attempts = below(4); attempts > 0 && dialog.isVisible(); --attempts) {
        const QString refusal = enterName(field);
        if (!refusal.isEmpty()) {
            expectBox(refusal);
        }
        accept(dialog, field);
        EXPECT_EQ(dialog.isVisible(), !refusal.isEmpty());
    }
    if (dialog.isVisible()) {
        leave(dialog, cancelButton);
    }
}

// --- Groups

QString RandomCommands::newGroupRefusal(const std::optional<Address>& parent, const QString& typed,
                                        const GroupNameTrial& name) const {
    if (typed.isEmpty()) {
        return app::text(850);
    }
    if (parent ? model_.hasSubGroup(*parent, typed) : model_.hasFile(typed)) {
        return app::text(851);
    }
    const bool isStopLeftOut = typed != name.text;
    const bool isValid = isStopLeftOut || (parent ? name.isValidBelow : name.isValidAtTop);
    return isValid && (parent || !model_.hasFileIgnoringCase(typed)) ? QString() : app::text(852);
}

void RandomCommands::newGroup() {
    const bool isBelowPreset = screen_.selected && !isTopSelected();
    run(either("Men_Datei_0", "gNew"), Opens::Dialog, [&](QDialog& dialog) {
        auto* target = dialog.findChild<QComboBox*>("cboGruppe");
        EXPECT_EQ(target->count(), screen_.selected ? 2 : 1);
        EXPECT_EQ(target->currentIndex(), isBelowPreset ? 1 : 0);
        if (screen_.selected && oneIn(2)) {
            target->setCurrentIndex(below(2));
        }
        const auto parent = target->currentIndex() == 1 ? screen_.selected : std::nullopt;
        addNote(parent ? " below " + parent->key() : QStringLiteral(" at the top"));
        tryNames(dialog, "txtNeu", "cmdAbbruch", {}, [&](QLineEdit* field) {
            const GroupNameTrial name = anyGroupName();
            type(field, name.text);
            const QString typed = QString(name.text).remove(u'.');
            EXPECT_EQ(plain(field->text()), plain(typed));
            const QString refusal = newGroupRefusal(parent, typed, name);
            if (refusal.isEmpty()) {
                screen_.groupMade(model_.addGroup(parent, typed));
            }
            return refusal;
        });
    });
}

QString RandomCommands::renameGroupRefusal(const GroupNameTrial& name) const {
    const QString typed = name.text;
    const bool isBelow = screen_.selected && !isTopSelected();
    const auto parent =
        isBelow
            ? std::optional(Address{screen_.selected->file, model_.find(*screen_.selected)->parent})
            : std::nullopt;
    if (parent ? model_.hasSubGroup(*parent, typed) : model_.hasFile(typed)) {
        return app::text(151) + typed + app::text(152);
    }
    const bool isOtherFile = !isBelow && model_.hasFileIgnoringCase(typed) &&
                             !(screen_.selected && isSameName(screen_.selected->file, typed));
    if (!(isBelow ? name.isValidBelow : name.isValidAtTop) || isOtherFile) {
        return app::text(52);
    }
    if (!screen_.selected) {
        return app::text(150);
    }
    return !isBelow && model_.meetsOtherStorages(*screen_.selected, typed) ? QStringLiteral("*")
                                                                           : QString();
}

void RandomCommands::renameGroup() {
    const QString action = anyOfThese({"Men_Bearbeiten_7", "gRename", "F2 on tvwGruppen"});
    run(action, Opens::Dialog, [&](QDialog& dialog) {
        tryNames(dialog, "txtNeu", "cmdAbbruch", groupText(), [&](QLineEdit* field) {
            const GroupNameTrial name = anyGroupName();
            const QString typed = name.text;
            type(field, typed);
            const QString refusal = renameGroupRefusal(name);
            if (refusal.isEmpty()) {
                expectBox(app::text(151) + groupText() + app::text(153) + typed + app::text(154));
                screen_.groupRenamed(model_.renameGroup(*screen_.selected, typed));
            }
            return refusal;
        });
    });
}

// What the question says of the groups that go along.
QString RandomCommands::groupsBelowText() const {
    const library_model::Address& group = *screen_.selected;
    QSet<QString> below{group.storage};
    for (const library_model::Address& other : model_.groupsOf(group.file)) {
        if (below.contains(model_.find(other)->parent)) {
            below.insert(other.storage);
        }
    }
    const bool isGerman = app::languageCode() == app::kGermanLocale;
    switch (below.size()) {
    case 1:
        return {};
    case 2:
        return isGerman ? QStringLiteral("\n\nIhre Untergruppe wird mitgelöscht.")
                        : QStringLiteral("\n\nIts sub-group is deleted as well.");
    default:
        return (isGerman ? QStringLiteral("\n\nIhre %1 Untergruppen werden mitgelöscht.")
                         : QStringLiteral("\n\nIts %1 sub-groups are deleted as well."))
            .arg(below.size() - 1);
    }
}

void RandomCommands::deleteGroup() {
    const QString action = anyOfThese({"Men_Bearbeiten_8", "gDelete", "Del on tvwGruppen"});
    const Answer answer = anyAnswer();
    if (!screen_.selected) {
        if (offersMenu() || action == "gDelete") {
            expectBox(app::text(306));
        }
    } else {
        expectBox(app::text(304) + groupText() + app::text(305) + groupsBelowText());
        if (answer == Answer::Yes) {
            model_.removeGroup(*screen_.selected);
            screen_.groupRemoved();
        }
    }
    run(action, Opens::Nothing, {}, answer);
}

void RandomCommands::showGroupInfo() {
    const QString action = either("Men_Bearbeiten_9", "gInfo");
    if (!screen_.selected) {
        expectBox(app::text(306));
        run(action, Opens::Nothing);
        return;
    }
    run(action, Opens::Dialog, [&](QDialog& dialog) {
        const library_model::Group& group = *model_.find(*screen_.selected);
        expectText(dialog, "lblName2", group.name);
        expectText(dialog, "lblBilder2", QString::number(group.pictures.size()));
        QString size = app::numberText(double(model_.bytesOf(*screen_.selected)) / 1024);
        if (size.contains(u',')) {
            size.truncate(size.indexOf(u',') + 3);
        }
        expectText(dialog, "lblGr_e2", size + " KB");
        leave(dialog, "cmdOK");
    });
}

// --- Pictures

QString RandomCommands::addPictureRefusal(const Source* file, const QString& name) const {
    if (file == nullptr) {
        return app::text(950);
    }
    if (name == app::text(app::kTextNoPicture)) {
        return app::text(951);
    }
    if (name.isEmpty()) {
        return app::text(953);
    }
    if (!screen_.selected) {
        return app::text(952);
    }
    return library_model::isValidPictureName(name) ? QString() : app::text(951);
}

// Clicks a file; gives what can be stored then, nothing for a file that is no picture.
const Source* RandomCommands::clickFile(QDialog& dialog) {
    const bool isBroken = oneIn(8);
    const Source* file = isBroken ? nullptr : &anyOf(sources_);
    const QString name = isBroken ? QString(kNoPictureFile) : file->file;
    addNote(u' ' + name);
    if (isBroken) {
        expectBox(app::text(957));
    }
    auto* files = dialog.findChild<QListWidget*>("filDatei");
    QListWidgetItem* item = files->findItems(name, Qt::MatchExactly).value(0);
    files->scrollToItem(item);
    QTest::mouseClick(files->viewport(), Qt::LeftButton, {}, files->visualItemRect(item).center());
    settle(dialog);
    compareBoxes();
    if (!isBroken) {
        EXPECT_EQ(dialog.findChild<QLineEdit*>("txtName")->text(), name.section(u'.', 0, 0));
    }
    return file;
}

// Whether the model has another picture now.
bool RandomCommands::storePicture(QDialog& dialog, const Source* file, Answer answer) {
    auto* field = dialog.findChild<QLineEdit*>("txtName");
    const QString name = field->text();
    const QString refusal = addPictureRefusal(file, name);
    bool isStored = false;
    if (!refusal.isEmpty()) {
        expectBox(refusal);
    } else if (screen_.selected) {
        const bool isThere = model_.hasPictureIgnoringCase(*screen_.selected, name);
        if (isThere) {
            expectBox(app::text(954));
        }
        isStored = !isThere || answer == Answer::Yes;
        if (isStored) {
            model_.putPicture(*screen_.selected, name, file);
        }
    }
    accept(dialog, field);
    EXPECT_TRUE(dialog.isVisible());
    return isStored;
}

void RandomCommands::addPictures() {
    const QString action = either("Men_Bearbeiten_6", "gOpen");
    if (!offersMenu() && action != "gOpen") {
        run(action, Opens::Nothing);
        return;
    }
    const Answer answer = anyAnswer();
    const auto inDialog = [&](QDialog& dialog) {
        settle(dialog);
        auto* field = dialog.findChild<QLineEdit*>("txtName");
        EXPECT_EQ(field->text(), "");
        ASSERT_EQ(dialog.findChild<QListWidget*>("filDatei")->count(),
                  static_cast<int>(sources_.size()) + 1);
        const Source* file = nullptr;
        bool isAnyStored = false;
        for (int attempts = below(4); attempts > 0; --attempts) {
            if (!oneIn(5)) {
                file = clickFile(dialog);
            }
            if (!oneIn(6)) {
                type(field, anyPictureName());
            }
            isAnyStored = storePicture(dialog, file, answer) || isAnyStored;
        }
        // Left in any other way, the dialog has the window refresh nothing.
        if (isAnyStored || oneIn(2)) {
            screen_.refresh();
            press(dialog, "cmdAbbruch");
        }
    };
    run(action, Opens::Dialog, inDialog, answer);
}

QString RandomCommands::renamePictureRefusal(const QString& name) const {
    if (library_model::isReservedName(name)) {
        return app::text(454) + u'"' + name + u'"' + app::text(455);
    }
    if (name == app::text(app::kTextNoPicture)) {
        return u'"' + name + app::text(450);
    }
    if (name.isEmpty()) {
        return app::text(451);
    }
    if (!screen_.selected || !isPictureThere()) {
        return app::text(453);
    }
    if (model_.hasPicture(*screen_.selected, name)) {
        return app::text(452);
    }
    const bool isOther =
        model_.hasPictureIgnoringCase(*screen_.selected, name) && !isSameName(name, screen_.label);
    return library_model::isValidPictureName(name) && !isOther ? QString() : app::text(951);
}

void RandomCommands::renamePicture() {
    const QString action = screen_.isStrip && oneIn(3) ? QStringLiteral("F2 on shpVorschau")
                                                       : either("Men_Bearbeiten_1", "bRename");
    if (action != "bRename" && (!offersMenu() || screen_.showsNoPicture())) {
        run(action, Opens::Nothing);
        return;
    }
    run(action, Opens::Dialog, [&](QDialog& dialog) {
        const QString oldName = screen_.showsNoPicture() ? QString() : screen_.label;
        tryNames(dialog, "txtName", "cmdCancel", oldName, [&](QLineEdit* field) {
            const QString name = anyPictureName();
            type(field, name);
            const QString refusal = renamePictureRefusal(name);
            if (refusal.isEmpty()) {
                model_.renamePicture(*screen_.selected, screen_.label, name);
                screen_.pictureRenamed(name);
            }
            return refusal;
        });
    });
}

QString RandomCommands::renameInPlaceRefusal(const Address& group, const QString& from,
                                             const QString& to) const {
    if (to == app::text(app::kTextNoPicture)) {
        return u'"' + to + app::text(450);
    }
    if (to.isEmpty()) {
        return app::text(451);
    }
    if (to == "Name" || to == "Parent" || model_.hasPicture(group, to)) {
        return app::text(452);
    }
    const bool isOther = model_.hasPictureIgnoringCase(group, to) && !isSameName(from, to);
    return library_model::isValidPictureName(to) && !isOther ? QString() : app::text(951);
}

void RandomCommands::renameInPlace() {
    const std::optional<Address> group = screen_.shown();
    if (!group || screen_.isStrip || screen_.rows.empty()) {
        return choosePicture();
    }
    const QString from = anyOf(screen_.rows).name;
    const QString to = oneIn(6) ? from : anyPictureName();
    addNote(u' ' + from);
    screen_.choose(from);
    const QString refusal = from == to ? QString() : renameInPlaceRefusal(*group, from, to);
    if (!refusal.isEmpty()) {
        expectBox(refusal);
    } else if (from != to) {
        model_.renamePicture(*group, from, to);
        screen_.renamedInPlace(from, to);
    }
    QTreeWidgetItem* row =
        list()->findItems(from, Qt::MatchExactly | Qt::MatchCaseSensitive).value(0);
    ASSERT_NE(row, nullptr);
    MessageBoxScript script;
    script_ = &script;
    list()->setFocus();
    list()->setCurrentItem(row, 0, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    list()->editItem(row, 0);
    auto* editor = list()->viewport()->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    type(editor, to);
    QTest::keyClick(editor, Qt::Key_Return);
    quiesce();
    compareBoxes();
    script_ = nullptr;
}

void RandomCommands::deletePicture() {
    const QString action =
        oneIn(3) ? "Del on " + picturesView() : either("Men_Bearbeiten_3", "bDelete");
    const Answer answer = anyAnswer();
    if (screen_.selected && isPictureThere()) {
        expectBox(app::text(300) + screen_.label + app::text(301) + groupText() + app::text(302));
        if (answer == Answer::Yes) {
            screen_.deletePicture();
        }
    }
    run(action, Opens::Nothing, {}, answer);
}

void RandomCommands::showPictureInfo() {
    const QString action = either("Men_Bearbeiten_4", "bInfo");
    if (screen_.label.isEmpty()) {
        expectBox(app::text(303));
    }
    if (!isPictureThere()) {
        run(action, Opens::Nothing);
        return;
    }
    run(action, Opens::Dialog, [&](QDialog& dialog) {
        const auto picture = *model_.picturesOf(screen_.selected).find(screen_.label);
        expectText(dialog, "lblName2", picture.first);
        expectText(dialog, "lblBreite2", numberText(picture.second->width));
        expectText(dialog, "lblH_he2", numberText(picture.second->height));
        expectText(dialog, "lblDateiTyp", picture.second->type);
        leave(dialog, "cmdOK");
    });
}

void RandomCommands::showLibraryInfo() {
    run("Men_Hilfe_3", Opens::Dialog, [&](QDialog& dialog) {
        expectText(dialog, "Label2", app::text(1300) + QString::number(model_.fileNames().size()));
        expectText(dialog, "Label3", app::text(1301) + QString::number(model_.pictureCount()));
        leave(dialog, "cmdZur_ck");
    });
}

void RandomCommands::expectCopy(const QString& path, const QString& fileName) {
    EXPECT_EQ(plain(path), plain(app::settings().temporaryFolder() + fileName));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << plain(path);
    EXPECT_EQ(file.readAll(), shownSource()->bytes);
}

void RandomCommands::handOver() {
    const QString before = window().handOverValue();
    const bool isOffered = offersMenu();
    const QString action = either("Men_Datei_4", "bCopy");
    const Source* source = shownSource();
    run(action, Opens::Nothing);
    if (source != nullptr && (isOffered || action == "bCopy")) {
        expectCopy(window().handOverValue(), "CopiedPicture." + source->type);
    } else {
        EXPECT_EQ(window().handOverValue(), before);
    }
}

void RandomCommands::readPicture() {
    const Source* source = screen_.showsNoPicture() ? nullptr : shownSource();
    run("Men_Bearbeiten_0", Opens::Nothing);
    if (source != nullptr) {
        const QString name = "Picture." + source->type;
        expectCopy(app::settings().temporaryFolder() + name, name);
    }
}

void RandomCommands::copyPicture() {
    const Source* source = screen_.showsNoPicture() ? nullptr : shownSource();
    run("Ctrl+C on " + (oneIn(2) ? picturesView() : QStringLiteral("tvwGruppen")), Opens::Nothing);
    if (source != nullptr) {
        const QString path =
            QGuiApplication::clipboard()->mimeData()->urls().value(0).toLocalFile();
        const QFileInfo file(path);
        expectCopy(path, "Clipboard/" + file.dir().dirName() + u'/' + file.fileName());
    }
}

void RandomCommands::editPicture() {
    const Source* source = screen_.showsNoPicture() ? nullptr : shownSource();
    const bool isVector = source != nullptr && source->type == "WMF";
    run(kDoubleClick, source != nullptr ? Opens::Dialog : Opens::Nothing, [&](QDialog& dialog) {
        if (isVector) {
            EXPECT_EQ(plain(dialog.objectName()), "frmOptionenWMF");
            EXPECT_TRUE(dialog.windowTitle().contains(screen_.label));
        } else {
            EXPECT_EQ(plain(dialog.objectName()), "frmOptionenBMP");
            expectText(dialog, "lblBildname", screen_.label);
            dialog.findChild<QAction*>(QStringLiteral("Men_Bild_2"))->trigger();
        }
    });
}

// --- Choosing

void RandomCommands::clickGroup() {
    const std::vector<Address> groups = model_.groups();
    if (groups.empty()) {
        return newGroup();
    }
    // One group is to grow large.
    const Address group = oneIn(3) ? model_.largestGroup() : anyOf(groups);
    addNote(u' ' + group.key());
    QTreeWidgetItem* item = nullptr;
    for (QTreeWidgetItemIterator node(tree()); *node != nullptr; ++node) {
        item = (*node)->data(0, Qt::UserRole).toString() == group.key() ? *node : item;
    }
    ASSERT_NE(item, nullptr);
    tree()->scrollToItem(item);
    QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {},
                      tree()->visualItemRect(item).center());
    screen_.clickNode(group);
}

void RandomCommands::clearSelection() {
    const QPoint place(5, tree()->viewport()->height() - 3);
    if (tree()->itemAt(place) != nullptr) {
        return; // no free area is left
    }
    QContextMenuEvent request(QContextMenuEvent::Mouse, place,
                              tree()->viewport()->mapToGlobal(place));
    QApplication::sendEvent(tree()->viewport(), &request);
    EXPECT_TRUE(find<QMenu>("Band2")->isVisible());
    find<QMenu>("Band2")->close();
    screen_.clearSelection();
}

void RandomCommands::choosePicture() {
    const auto pictures = screen_.isStrip ? screen_.page() : screen_.rows;
    if (pictures.empty()) {
        return addPictures();
    }
    const int index = below(pictures.size());
    const QString name = pictures[static_cast<std::size_t>(index)].name;
    addNote(u' ' + name);
    screen_.choose(name);
    if (screen_.isStrip) {
        QTest::mouseClick(strip(), Qt::LeftButton, {}, centreOf(index));
        return;
    }
    QTreeWidgetItem* row = list()->topLevelItem(index);
    if (!row->isSelected()) { // another click would begin to edit the name
        list()->scrollToItem(row);
        QRect place = list()->visualItemRect(row);
        place.setWidth(list()->columnWidth(0));
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, place.center());
    }
}

void RandomCommands::turnPage() {
    if (!screen_.isStrip) {
        return toggleView();
    }
    const int last = screen_.lastPage();
    const int page = oneIn(4) ? 1 : 1 + below(static_cast<std::size_t>(last));
    addNote(QStringLiteral(" to %1").arg(page));
    find<QScrollBar>("imgScroll")->setValue(page);
    screen_.turnTo(page);
}

void RandomCommands::toggleView() {
    screen_.toggleView();
    run("Men_Extras_0", Opens::Nothing);
}

void RandomCommands::refresh() {
    screen_.refresh();
    if (oneIn(2)) {
        window().Aktualisieren();
    } else {
        run("F5 on " + (oneIn(2) ? picturesView() : QStringLiteral("tvwGruppen")), Opens::Nothing);
    }
}
