// The keys of the main window, on a group two deep.
#include "app/help.h"
#include "app/settings.h"
#include "app/texts.h"
#include "platform/held_file.h"
#include "store/picture_operations.h"
#include "ui/main_window_fixture.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QLineEdit>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>
#include <QUrl>

#include <utility>

namespace {

class Keyboard : public MainWindowTest {
  protected:
    void startTwoDeep(const QStringList& pictures) {
        const auto top = makeGroup("Pumpen");
        group_ = makeGroup("Kreisel", top);
        for (const QString& name : pictures) {
            addPicture(group_, name);
        }
        start();
        clickNode("Pumpen/Kreisel");
        QApplication::setActiveWindow(&window());
    }

    void press(QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QApplication::setActiveWindow(&window()); // a dialog may have been it
        widget->setFocus();
        QTest::keyClick(widget, key, modifiers);
        settle();
    }
    QWidget* strip() { return find<QWidget>("shpVorschau"); }

    store::GroupAddress group_;
};

TEST_F(Keyboard, F2RenamesWhatHasTheFocus) {
    startTwoDeep({"P1"});
    QTest::keyClick(strip(), Qt::Key_Home);
    inDialog([this] { press(strip(), Qt::Key_F2); },
             [](QDialog& dialog) {
                 EXPECT_EQ(dialog.objectName(), "frmEditSymbol");
                 dialog.findChild<QLineEdit*>()->setText("Neu");
                 QTest::keyClick(&dialog, Qt::Key_Return);
             });
    EXPECT_EQ(label(), "Neu");
    inDialog([this] { press(tree(), Qt::Key_F2); },
             [](QDialog& dialog) {
                 EXPECT_EQ(dialog.objectName(), "frmEditGruppe");
                 QTest::keyClick(&dialog, Qt::Key_Escape);
                 EXPECT_FALSE(dialog.isVisible());
             });
    EXPECT_EQ(selectedNode(), "Kreisel");
}

TEST_F(Keyboard, TheFocusCanBeSeenBesideAPictureAsWell) {
    startTwoDeep({"P1"});
    restart(); // none is chosen
    QApplication::setActiveWindow(&window());
    tree()->setFocus();
    QWidget* focused = tree();
    for (const char* name : {"shpVorschau", "imgScroll"}) {
        auto* control = find<QWidget>(name);
        const QImage before = control->grab().toImage();
        QTest::keyClick(std::exchange(focused, control), Qt::Key_Tab);
        ASSERT_TRUE(control->hasFocus()) << name;
        EXPECT_NE(control->grab().toImage(), before) << name;
    }
}

TEST_F(Keyboard, TabDoesNotGoBelowWhatCoversThePictures) {
    start();
    QApplication::setActiveWindow(&window());
    tree()->setFocus();
    QWidgetList met;
    for (QWidget* now = tree(); !met.contains(now); now = QApplication::focusWidget()) {
        met.append(now);
        const QWidget* top = window().childAt(now->mapTo(&window(), now->rect().center()));
        EXPECT_TRUE(top == now || now->isAncestorOf(top)) << now->objectName().toStdString();
        QTest::keyClick(now, Qt::Key_Tab);
    }
    EXPECT_TRUE(met.contains(find<QPushButton>("cmdNeueGruppe")));
    const auto group = makeGroup("Pumpen");
    window().refresh();
    settle();
    QCoreApplication::processEvents();
    tree()->setFocus();
    QTest::keyClick(tree(), Qt::Key_Tab);
    EXPECT_TRUE(strip()->hasFocus());
}

TEST_F(Keyboard, DeleteAsksAndActsOnWhatHasTheFocus) {
    startTwoDeep({"P1", "P2"});
    {
        const MessageBoxScript no({}, app::kAnswerNo);
        press(strip(), Qt::Key_Delete);
        press(tree(), Qt::Key_Delete);
    }
    EXPECT_EQ(store::listPictures(library(), group_).size(), 2U);
    MessageBoxScript yes({}, app::kAnswerYes);
    press(strip(), Qt::Key_Delete);
    EXPECT_EQ(thumbnails(), QStringList{"P2"});
    trigger("Men_Extras_0");
    press(find<QTreeWidget>("lvwInfo"), Qt::Key_Delete);
    EXPECT_TRUE(rows().isEmpty());
    EXPECT_EQ(label(), app::text(app::kTextNoPicture));
    yes.take();
    press(find<QTreeWidget>("lvwInfo"), Qt::Key_Delete);
    EXPECT_TRUE(yes.take().isEmpty()) << "there is nothing to ask about";
    press(tree(), Qt::Key_Delete);
    EXPECT_EQ(node("Pumpen")->childCount(), 0);
}

TEST_F(Keyboard, WithoutAGroupNothingIsDeleted) {
    start();
    const MessageBoxScript yes({}, app::kAnswerYes);
    press(strip(), Qt::Key_Delete);
    EXPECT_TRUE(boxes_.take().isEmpty());
    EXPECT_TRUE(storagesFolder().isEmpty());
}

TEST_F(Keyboard, EnterFoldsTheNode) {
    startTwoDeep({});
    clickNode("Pumpen");
    const bool was = node("Pumpen")->isExpanded();
    press(tree(), Qt::Key_Return);
    EXPECT_NE(node("Pumpen")->isExpanded(), was);
    press(tree(), Qt::Key_Enter);
    EXPECT_EQ(node("Pumpen")->isExpanded(), was);
}

TEST_F(Keyboard, CopyPutsImageAndFileOnTheClipboard) {
    startTwoDeep({"Rote Pumpe"});
    press(strip(), Qt::Key_C, Qt::ControlModifier);
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    ASSERT_NE(data, nullptr) << boxes_.takeText().toStdString();
    ASSERT_TRUE(data->hasImage());
    EXPECT_EQ(data->imageData().value<QImage>().pixelColor(1, 1), QColor(Qt::red));
    ASSERT_EQ(data->urls().size(), 1);
    QFile file(data->urls().front().toLocalFile());
    EXPECT_TRUE(file.fileName().endsWith("/Rote Pumpe.BMP")) << file.fileName().toStdString();
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const auto stored = store::readPicture(library(), group_, {u"Rote Pumpe"}).bytes;
    EXPECT_EQ(file.readAll().size(), qsizetype(stored.size()));
    EXPECT_TRUE(file.remove());

    store::deletePicture(library(), group_, {u"Rote Pumpe"});
    press(strip(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(boxes_.takeText().startsWith("Gruppe: Pumpen / Kreisel\n"))
        << "it is gone, and somebody has to say so";
    ASSERT_EQ(label(), app::text(app::kTextNoPicture));
    press(strip(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(boxes_.take().isEmpty());
}

TEST_F(Keyboard, CopyBelongsToANameThatIsBeingEdited) {
    startTwoDeep({"P1"});
    trigger("Men_Extras_0");
    auto* list = find<QTreeWidget>("lvwInfo");
    press(list, Qt::Key_F2);
    auto* editor = list->viewport()->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->selectAll();
    QTest::keyClick(editor, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "P1");
    EXPECT_FALSE(QGuiApplication::clipboard()->mimeData()->hasImage());
    QTest::keyClick(editor, Qt::Key_Escape);
}

TEST_F(Keyboard, F1AsksForTheMainWindowsTopic) {
    startTwoDeep({});
    QList<app::HelpTopic> topics;
    app::setHelpHandler([&](const app::HelpCall& call) {
        EXPECT_EQ(call.file, "C:\\TalvixStudio\\Common\\HelpFiles\\TXSGraphicsLib.chm");
        EXPECT_EQ(call.command, 15U);
        topics.append(call.topic);
    });
    press(tree(), Qt::Key_F1);
    press(strip(), Qt::Key_F1);
    app::setHelpHandler({});
    EXPECT_EQ(topics, QList<app::HelpTopic>(2, app::HelpTopic::MainWindow));
}

// A foreign program's file may hold a path where a name should be; following it would overwrite
// what lies there.
TEST_F(Keyboard, CopyNeverLeavesTheTemporaryFolder) {
    const auto group = makeGroup("Pumpen");
    addPicture(group, "xxxescape");
    const std::filesystem::path path = store::pathOf(library(), group.file);
    QFile file(QString::fromStdString(path.string()));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    QByteArray bytes = file.readAll();
    const auto utf16 = [](const QString& text) {
        return QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
    };
    bytes.replace(utf16("xxxescape"), utf16("../escape"));
    file.seek(0);
    file.write(bytes);
    file.close();
    start();
    clickNode("Pumpen");
    ASSERT_EQ(label(), "../escape");
    press(strip(), Qt::Key_C, Qt::ControlModifier);
    ASSERT_EQ(boxes_.takeText(), "(0 boxes)");
    const QString copy = QGuiApplication::clipboard()->mimeData()->urls().value(0).toLocalFile();
    EXPECT_TRUE(copy.startsWith(app::settings().temporaryFolder())) << copy.toStdString();
    EXPECT_EQ(QFileInfo(copy).canonicalFilePath(), copy);
    EXPECT_EQ(QFileInfo(copy).fileName(), "_.._escape.BMP");
}

TEST_F(Keyboard, RefreshShowsWhatOthersHaveChanged) {
    startTwoDeep({"P1", "P2"});
    QTest::keyClick(strip(), Qt::Key_End);
    EXPECT_EQ(label(), "P2");
    makeGroup("Behälter");
    addPicture(group_, "P0");
    press(strip(), Qt::Key_F5);
    settle();
    EXPECT_NE(node("Behälter"), nullptr);
    EXPECT_EQ(selectedNode(), "Kreisel");
    EXPECT_EQ(label(), "P2");
    EXPECT_EQ(thumbnails().size(), 3);
    store::deleteGroup(library(), group_);
    press(strip(), Qt::Key_F5);
    settle();
    EXPECT_EQ(selectedNode(), "Behälter") << "the first node, in the place of one that is gone";
}

// A group that another program holds has no node of its own for as long as that lasts.
TEST_F(Keyboard, RefreshComesBackToAGroupThatWasLocked) {
    makeGroup("Armaturen");
    startTwoDeep({"P1"});
    auto held = holdLocked(store::pathOf(library(), group_.file));
    press(tree(), Qt::Key_F5);
    EXPECT_EQ(selectedNode(), "Pumpen") << "and not just any group";
    EXPECT_TRUE(thumbnails().isEmpty());
    held.reset();
    press(tree(), Qt::Key_F5);
    EXPECT_EQ(selectedNode(), "Kreisel");
    EXPECT_EQ(thumbnails(), QStringList{"P1"});

    held = holdLocked(store::pathOf(library(), group_.file));
    press(tree(), Qt::Key_F5);
    window().close(); // which remembers the group that is meant
    held.reset();
    start();
    EXPECT_EQ(selectedNode(), "Kreisel");
}

// A key that a menu shows runs the item beside it.
TEST_F(Keyboard, EveryKeyStandsInAMenuOnce) {
    startTwoDeep({"P1"});
    const auto keyOf = [this](const char* item) {
        return find<QAction>(item)->shortcut().toString(QKeySequence::PortableText);
    };
    EXPECT_EQ(keyOf("Men_Bearbeiten_1"), "F2");
    EXPECT_EQ(keyOf("Men_Bearbeiten_3"), "Del");
    EXPECT_EQ(keyOf("Men_Bearbeiten_7"), "F2");
    EXPECT_EQ(keyOf("Men_Extras_9"), "F5");
    EXPECT_EQ(keyOf("Men_Extras_4"), "Ctrl++");
    press(strip(), Qt::Key_F, Qt::ControlModifier);
    EXPECT_TRUE(find<QLineEdit>("txtFind")->hasFocus());
}

// In the menus Undo, Cut, Copy, Paste and Select all.
TEST_F(Keyboard, TheEditMenuOffersWhatCanBeDone) {
    makeGroup("Leer");
    startTwoDeep({"P1", "P2"});
    QGuiApplication::clipboard()->setText("no picture");
    const auto offered = [this] {
        auto* menu = find<QMenu>("Men_Bearbeiten");
        menu->popup({});
        QString letters;
        for (const auto& [index, letter] :
             {std::pair{11, 'u'}, {12, 'x'}, {13, 'c'}, {14, 'v'}, {15, 'a'}}) {
            const auto* item = find<QAction>(QString("Men_Bearbeiten_%1").arg(index));
            EXPECT_FALSE(item->shortcut().isEmpty());
            letters += item->isEnabled() ? letter : '-';
        }
        menu->close();
        return letters;
    };
    EXPECT_EQ(offered(), "-xc-a");
    press(strip(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(offered(), "-xcva");
    clickNode("Leer");
    EXPECT_EQ(offered(), "---v-");
    press(tree(), Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(label(), "P1");
    EXPECT_EQ(offered(), "-xcva");
    const MessageBoxScript yes({}, app::kAnswerYes);
    press(strip(), Qt::Key_Delete);
    EXPECT_EQ(offered(), "u--v-");
    press(strip(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(offered(), "-xcva");
    QGuiApplication::clipboard()->clear();
    store::removeGroupFile(library(), {u"Leer"});
    store::removeGroupFile(library(), {u"Pumpen"});
    window().lookForChanges();
    settle();
    EXPECT_EQ(offered(), "-----");
}

// What tree and pictures do with a key is not meant by whoever has gone to the menu bar with Alt.
TEST_F(Keyboard, KeysOfTheViewsDoNothingInTheMenuBar) {
    startTwoDeep({"P1"});
    MessageBoxScript yes({}, app::kAnswerYes);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_F2, Qt::Key_Delete}) {
        SCOPED_TRACE(key);
        strip()->setFocus();
        QTest::keyClick(strip(), Qt::Key_Alt);
        ASSERT_EQ(QApplication::focusWidget(), window().menuBar());
        QTest::keyClick(window().menuBar(), key);
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
        while (QWidget* menu = QApplication::activePopupWidget()) {
            QTest::keyClick(menu, Qt::Key_Escape);
        }
        QTest::keyClick(window().menuBar(), Qt::Key_Escape);
    }
    EXPECT_TRUE(yes.take().isEmpty());
}

} // namespace
