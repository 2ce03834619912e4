#include "app/message_box.h"
#include "app/patience.h"
#include "app/texts.h"
#include "platform/held_file.h"
#include "store/picture_operations.h"
#include "ui/main_window_fixture.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPointer>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

namespace {

class MainPictures : public MainWindowTest {
  protected:
    void startWith(const QStringList& names) {
        group_ = makeGroup("Pumpen");
        for (const QString& name : names) {
            addPicture(group_, name);
        }
        start();
        clickNode("Pumpen");
    }

    void pressInStrip(int key) {
        QTest::keyClick(find<QWidget>("shpVorschau"), static_cast<Qt::Key>(key));
        settle();
    }

    // The names that a page shows: pictures from its first element on.
    QStringList pageNames(int page, std::size_t cells) {
        const auto indexes = store::listPictureNames(library(), group_).elements;
        const auto pictures = store::listPictures(library(), group_);
        QStringList names;
        for (std::size_t i = 0; i < indexes.size() && names.size() < qsizetype(cells); ++i) {
            if (indexes[i] >= cells * static_cast<std::size_t>(page - 1)) {
                names.append(QString::fromStdU16String(pictures[i].name.text));
            }
        }
        return names;
    }

    QColor previewCentre() {
        settle();
        auto* preview = find<QWidget>("imgVorschau");
        return preview->grab().toImage().pixelColor(preview->rect().center());
    }

    // Ends in-place editing of the first row with that text.
    void renameFirstRow(const QString& text) {
        auto* list = find<QTreeWidget>("lvwInfo");
        QApplication::setActiveWindow(&window()); // a box may have been it
        list->setFocus();
        list->setCurrentItem(list->topLevelItem(0));
        QTest::keyClick(list, Qt::Key_F2);
        const QPointer<QLineEdit> editor = list->viewport()->findChild<QLineEdit*>();
        ASSERT_FALSE(editor.isNull());
        editor->setText(text);
        QTest::keyClick(editor, Qt::Key_Return);
        // The new name is on its way before the editor goes.
        ASSERT_TRUE(until([&] { return editor.isNull(); }));
        QCoreApplication::processEvents();
        settle();
    }

    store::GroupAddress group_;
};

TEST_F(MainPictures, AThumbnailIsChosenByMouseAndKeyboard) {
    group_ = makeGroup("Pumpen");
    addPicture(group_, "P1", Qt::red);
    addPicture(group_, "P2", Qt::green);
    addPicture(group_, "P3", Qt::blue);
    start();
    clickNode("Pumpen");
    QTest::mouseClick(thumbnail("P2"), Qt::LeftButton);
    EXPECT_EQ(label(), "P2");
    EXPECT_EQ(previewCentre(), QColor(Qt::green));
    pressInStrip(Qt::Key_Right);
    EXPECT_EQ(label(), "P3");
    EXPECT_EQ(previewCentre(), QColor(Qt::blue));
    pressInStrip(Qt::Key_Home);
    EXPECT_EQ(label(), "P1");
    pressInStrip(Qt::Key_Left); // no page before
    EXPECT_EQ(label(), "P1");
}

TEST_F(MainPictures, PagesAreCutByElementIndex) {
    QStringList names;
    for (int i = 10; i < 21; ++i) {
        names.append(QStringLiteral("P%1").arg(i));
    }
    startWith(names);
    window().resize(window().minimumSize()); // three thumbnails
    QTest::qWait(0);
    settle();
    auto* scroll = find<QScrollBar>("imgScroll");
    EXPECT_EQ(scroll->maximum(),
              int(store::listPictureNames(library(), group_).elements.back() / 3) + 1);
    for (int page = 1; page <= scroll->maximum(); ++page) {
        scroll->setValue(page);
        settle();
        EXPECT_EQ(thumbnails(), pageNames(page, 3)) << page;
        EXPECT_FALSE(thumbnails().isEmpty());
    }
    EXPECT_NE(label(), app::text(7));

    scroll->setValue(1);
    settle();
    QTest::mouseClick(thumbnail(pageNames(1, 3).last()), Qt::LeftButton);
    pressInStrip(Qt::Key_Right); // on to the next page
    EXPECT_EQ(scroll->value(), 2);
    EXPECT_EQ(label(), pageNames(2, 3).first());
    pressInStrip(Qt::Key_PageDown);
    EXPECT_EQ(scroll->value(), 3);
    // Another group begins with its first page.
    makeGroup("Tanks");
    window().FillTreeView();
    clickNode("Tanks");
    EXPECT_EQ(scroll->value(), 1);
    EXPECT_EQ(scroll->maximum(), 1);
    // Also if it was chosen in the list.
    clickNode("Pumpen");
    scroll->setValue(3);
    trigger("Men_Extras_0");
    clickNode("Tanks");
    clickNode("Pumpen");
    trigger("Men_Extras_0");
    EXPECT_TRUE(thumbnails().isEmpty()) << "they are of the group before";
    settle();
    EXPECT_EQ(scroll->value(), 1);
    EXPECT_EQ(thumbnails(), pageNames(1, 3));
}

// The group's own two streams take part in cutting the pages, so that the second one usually
// begins with two pictures that the first one shows already.
TEST_F(MainPictures, ArrowsGoThroughAllPagesInOrder) {
    QStringList names;
    for (int i = 10; i < 22; ++i) {
        names.append(QStringLiteral("Pumpe %1").arg(i));
    }
    startWith(names);
    window().resize(window().minimumSize()); // three thumbnails, one below the other
    QTest::qWait(0);
    settle();
    ASSERT_EQ(thumbnails(), names.mid(0, 3));
    for (const auto& [forward, back] :
         {std::pair(Qt::Key_Right, Qt::Key_Left), std::pair(Qt::Key_Down, Qt::Key_Up)}) {
        for (const QString& name : names) {
            EXPECT_EQ(label(), name);
            pressInStrip(forward);
        }
        EXPECT_EQ(label(), names.last()) << "there is no page behind";
        for (qsizetype i = names.size() - 1; i > 0; --i) {
            EXPECT_EQ(label(), names[i]);
            pressInStrip(back);
        }
        pressInStrip(back);
        EXPECT_EQ(label(), names.first()) << "there is no page before";
    }
}

TEST_F(MainPictures, APageThatAnotherProgramHasEmptiedLeadsToTheLastOne) {
    startWith({"A0", "A1", "A2", "A3", "A4", "A5", "A6", "A7", "A8", "A9"});
    window().resize(window().minimumSize()); // three thumbnails
    QTest::qWait(0);
    settle();
    for (const char16_t* name : {u"A4", u"A5", u"A6", u"A7", u"A8", u"A9"}) {
        store::deletePicture(library(), group_, {name});
    }
    find<QScrollBar>("imgScroll")->setValue(4);
    settle();
    EXPECT_EQ(thumbnails(), QStringList{"A3"});
    EXPECT_EQ(find<QScrollBar>("imgScroll")->maximum(), 2);
    EXPECT_EQ(label(), "A0") << "and the group is not said to be empty";
}

TEST_F(MainPictures, DownIntoAShorterPageChoosesItsLastPicture) {
    startWith({"A0", "A1", "A2", "A3", "A4", "A5", "A6", "A7", "A8", "A9"});
    window().resize(window().minimumSize() + QSize(2 * 64, 0)); // three columns, three rows
    QTest::qWait(0);
    settle();
    QTest::mouseClick(thumbnail("A8"), Qt::LeftButton);
    pressInStrip(Qt::Key_Down);
    EXPECT_EQ(thumbnails(), QStringList{"A9"});
    EXPECT_EQ(label(), "A9");
}

// Delete, Return, Delete, Return must go on where the user looks.
TEST_F(MainPictures, AfterADeletionTheNextThumbnailIsCurrentOnItsPage) {
    QStringList left;
    for (int i = 10; i < 20; ++i) {
        left.append(QStringLiteral("Pumpe %1").arg(i));
    }
    startWith(left);
    window().resize(window().minimumSize()); // three thumbnails
    QTest::qWait(0);
    settle();
    const MessageBoxScript yes({}, app::kAnswerYes);
    auto* scroll = find<QScrollBar>("imgScroll");
    const auto expectCurrent = [&](const QString& name, int page) {
        EXPECT_EQ(label(), name);
        EXPECT_TRUE(thumbnails().contains(name)) << thumbnails().join(' ').toStdString();
        EXPECT_EQ(scroll->value(), page) << name.toStdString();
    };
    scroll->setValue(2);
    settle();
    QTest::mouseClick(thumbnail(thumbnails()[1]), Qt::LeftButton);
    while (left.last() != label()) {
        const QString next = left[left.indexOf(label()) + 1];
        left.removeOne(label());
        trigger("Men_Bearbeiten_3");
        settle();
        expectCurrent(next, 2);
    }
    // At the end it goes backwards, over pages that vanish.
    while (left.size() > 1) {
        left.removeLast();
        trigger("Men_Bearbeiten_3");
        settle();
        expectCurrent(left.last(), scroll->value());
        EXPECT_EQ(scroll->value(), scroll->maximum());
    }
    trigger("Men_Bearbeiten_3");
    settle();
    EXPECT_EQ(label(), app::text(app::kTextNoPicture));
}

TEST_F(MainPictures, TheNextThumbnailIsShownAlsoIfItsPageWasLeft) {
    startWith({"A0", "A1", "A2", "A3", "A4", "A5", "A6", "A7", "A8", "A9"});
    window().resize(window().minimumSize()); // three thumbnails
    QTest::qWait(0);
    settle();
    find<QScrollBar>("imgScroll")->setValue(3);
    settle();
    const MessageBoxScript yes({}, app::kAnswerYes);
    trigger("Men_Bearbeiten_3"); // A0, of the first page
    settle();
    EXPECT_EQ(label(), "A1");
    EXPECT_EQ(thumbnails(), (QStringList{"A1", "A2", "A3"}));
}

TEST_F(MainPictures, AnUndecodablePictureTakesACell) {
    group_ = makeGroup("Pumpen");
    addUndecodable(group_, "Bad");
    start();
    clickNode("Pumpen");
    EXPECT_EQ(thumbnails(), QStringList{"Bad"});
    EXPECT_EQ(label(), "Bad");
    EXPECT_TRUE(boxes_.take().isEmpty());
}

TEST_F(MainPictures, RightClickOnAThumbnailChoosesItAndShowsThePictureBand) {
    startWith({"P1", "P2"});
    QWidget* cell = thumbnail("P2");
    QTest::mousePress(cell, Qt::RightButton);
    QContextMenuEvent request(QContextMenuEvent::Mouse, cell->rect().center(),
                              cell->mapToGlobal(cell->rect().center()));
    QApplication::sendEvent(cell, &request);
    EXPECT_EQ(label(), "P2");
    EXPECT_TRUE(find<QMenu>("Band1")->isVisible());
    QTest::mouseRelease(cell, Qt::RightButton); // else the next test's mouse still holds it
}

TEST_F(MainPictures, ToolTipNamesTheThumbnailAndHidesOverTheFreeSurface) {
    startWith({"Pumpe & <b>Co"});
    auto* toolTip = find<QLineEdit>("txtName");
    int looks = 0;
    ASSERT_TRUE(until([&] {
        if (looks++ % 200 == 0) { // when the group is read again meanwhile, the wait begins anew
            QTest::mouseMove(thumbnail("Pumpe & <b>Co"), QPoint(4 + looks % 3, 4));
        }
        return toolTip->isVisible();
    }));
    EXPECT_EQ(toolTip->text(), "Pumpe & <b>Co");
    window().Aktualisieren(); // another picture may stand below the resting pointer now
    EXPECT_FALSE(toolTip->isVisible());
    settle();
    QTest::mouseMove(thumbnail("Pumpe & <b>Co"), QPoint(5, 5));
    ASSERT_TRUE(toolTip->isVisible());
    QMouseEvent move(QEvent::MouseMove, QPointF(1, 1), QPointF(1, 1), Qt::NoButton, {}, {});
    QApplication::sendEvent(window().centralWidget(), &move);
    EXPECT_FALSE(toolTip->isVisible());
}

TEST_F(MainPictures, ListShowsTheFactsAndItsFirstPicture) {
    startWith({"P1", "P2"});
    trigger("Men_Extras_0");
    EXPECT_FALSE(find<QAction>("Men_Extras_0")->isChecked());
    EXPECT_FALSE(find<QScrollBar>("imgScroll")->isVisible());
    auto* list = find<QTreeWidget>("lvwInfo");
    EXPECT_TRUE(list->isVisible());
    EXPECT_EQ(rows(), (QStringList{"P1", "P2"}));
    const QTreeWidgetItem* row = list->topLevelItem(0);
    EXPECT_EQ(row->text(1), "0 KB");
    EXPECT_EQ(row->text(2), "10");
    EXPECT_EQ(row->text(3), "20");
    EXPECT_EQ(row->text(4), "BMP");
    EXPECT_EQ(list->columnWidth(0), qRound(list->width() / 3.0));
    EXPECT_EQ(label(), "P1");
    QTest::keyClick(list, Qt::Key_Down);
    EXPECT_EQ(label(), "P2");

    makeGroup("Tanks");
    window().FillTreeView();
    clickNode("Tanks");
    EXPECT_TRUE(rows().isEmpty());
    EXPECT_EQ(label(), app::text(7));

    clickNode("Pumpen");
    trigger("Men_Extras_0");
    settle();
    EXPECT_TRUE(find<QScrollBar>("imgScroll")->isVisible());
    EXPECT_FALSE(list->isVisible());
    EXPECT_EQ(thumbnails(), (QStringList{"P1", "P2"}));
}

TEST_F(MainPictures, ResizingUnderTheListDoesNotLayOutThumbnails) {
    startWith({"P1"});
    trigger("Men_Extras_0");
    window().resize(700, 500);
    EXPECT_FALSE(find<QTimer>("Timer1")->isActive());
    EXPECT_EQ(find<QWidget>("lvwInfo")->width(), 700 - 3465 / 15);
    // Switched while the timer runs: the tick must not bring the thumbnails back.
    trigger("Men_Extras_0");
    trigger("Men_Extras_0");
    ASSERT_TRUE(until([&] { return !find<QTimer>("Timer1")->isActive(); }));
    EXPECT_TRUE(find<QWidget>("lvwInfo")->isVisible());
    EXPECT_TRUE(thumbnails().isEmpty());
}

TEST_F(MainPictures, WindowKeepsItsSmallestSize) {
    startWith({"P1"});
    window().resize(100, 700);
    EXPECT_EQ(window().size(), QSize(318, 700));
    window().resize(700, 100);
    EXPECT_EQ(window().size(), QSize(700, 314));
}

TEST_F(MainPictures, RenamingInPlaceAsksTheStore) {
    startWith({"P1", "P2"});
    trigger("Men_Extras_0");
    const auto refusalOf = [&](const QString& name) {
        renameFirstRow(name);
        EXPECT_EQ(rows(), (QStringList{"P1", "P2"})) << name.toStdString();
        const auto boxes = boxes_.take();
        if (boxes.size() != 1) {
            return QStringLiteral("%1 boxes").arg(boxes.size());
        }
        EXPECT_EQ(boxes[0].title, app::text(400));
        return boxes[0].text;
    };
    EXPECT_EQ(refusalOf("- Kein Bild -"), "\"- Kein Bild -\" ist kein gültiger Name für Bilder.");
    EXPECT_EQ(refusalOf(""), app::text(451));
    EXPECT_EQ(refusalOf("P2"), app::text(452));
    EXPECT_EQ(refusalOf("Name"), app::text(452));
    EXPECT_EQ(refusalOf("p2"), app::text(951));
    EXPECT_EQ(refusalOf("PARENT"), app::text(951));
    EXPECT_EQ(refusalOf("a/b"), app::text(951));
    EXPECT_EQ(refusalOf("P1"), "0 boxes"); // nothing changed, nothing to check

    renameFirstRow("Pumpe 1");
    EXPECT_TRUE(boxes_.take().isEmpty());
    EXPECT_EQ(rows(), (QStringList{"Pumpe 1", "P2"}));
    EXPECT_EQ(label(), "Pumpe 1");
    EXPECT_EQ(store::readPictureType(library(), group_, {u"Pumpe 1"}), "BMP");
    renameFirstRow("PUMPE 1"); // a change of case alone is one of the name
    EXPECT_EQ(rows(), (QStringList{"PUMPE 1", "P2"}));
    restart();
    trigger("Men_Extras_0");
    EXPECT_EQ(rows(), (QStringList{"P2", "PUMPE 1"})); // in the store's order
}

// A box that comes up in the middle of the editing takes the focus from the name's editor, which
// stays behind it.
TEST_F(MainPictures, ARefusalOfRenamingInPlaceIsToldOnceInARealBox) {
    startWith({"P1", "P2"});
    trigger("Men_Extras_0");
    const app::MsgBoxHandler script = app::setMsgBoxHandler({});
    QStringList told;
    QTimer looking;
    QObject::connect(&looking, &QTimer::timeout, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            told.append(box->text());
            const auto* viewport = find<QTreeWidget>("lvwInfo")->viewport();
            for (const auto* editor : viewport->findChildren<QLineEdit*>()) {
                EXPECT_FALSE(editor->isVisible());
            }
            box->button(QMessageBox::Ok)->click();
        }
    });
    looking.start(0);
    renameFirstRow("P2");
    app::setMsgBoxHandler(script);
    EXPECT_EQ(told, QStringList{app::text(452)});
    EXPECT_EQ(rows(), (QStringList{"P1", "P2"}));
    EXPECT_EQ(label(), "P1");
}

TEST_F(MainPictures, AFailureOfRenamingInPlaceNamesItsGroup) {
    group_ = makeGroup("Kreisel", makeGroup("Pumpen"));
    addPicture(group_, "P1");
    start();
    trigger("Men_Extras_0");
    clickNode("Pumpen/Kreisel");
    const auto path = store::pathOf(library(), group_.file);
    auto held = holdLocked(path);
    renameFirstRow("Neu");
    const auto boxes = boxes_.take();
    ASSERT_EQ(boxes.size(), 1);
    EXPECT_TRUE(boxes[0].text.startsWith("Gruppe: Pumpen / Kreisel\n"))
        << boxes[0].text.toStdString();
    EXPECT_EQ(boxes[0].title, "Bild umbenennen");
    EXPECT_EQ(rows(), QStringList{"P1"});

    held.reset();
    ASSERT_TRUE(std::filesystem::remove(path));
    renameFirstRow("Neu");
    EXPECT_TRUE(boxes_.takeText().contains("Nicht gefunden"));
    EXPECT_EQ(node("Pumpen"), nullptr);
    EXPECT_TRUE(rows().isEmpty());
}

TEST_F(MainPictures, ARenameEndedByAClickElsewhereStaysInItsGroup) {
    const store::GroupAddress other = makeGroup("Andere");
    addPicture(other, "P1");
    startWith({"P1"});
    trigger("Men_Extras_0");
    auto* list = find<QTreeWidget>("lvwInfo");
    list->setFocus();
    list->editItem(list->topLevelItem(0), 0);
    auto* editor = list->viewport()->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->setText("Neu");
    clickNode("Andere"); // takes the focus, so the editing ends
    QTest::qWait(0);
    settle();
    EXPECT_EQ(boxes_.take().size(), 0U);
    EXPECT_EQ(rows(), QStringList{"P1"});
    EXPECT_TRUE(store::pictureExists(library(), other, {u"P1"}));
    EXPECT_TRUE(store::pictureExists(library(), group_, {u"Neu"}) ||
                store::pictureExists(library(), group_, {u"P1"}));
}

TEST_F(MainPictures, AReplacedPictureIsShownAnew) {
    startWith({"P1", "P2"});
    QTest::mouseClick(thumbnail("P2"), Qt::LeftButton);
    store::deletePicture(library(), group_, {u"P2"});
    addPicture(group_, "P2", Qt::blue);
    window().Aktualisieren();
    settle();
    EXPECT_EQ(label(), "P2");
    EXPECT_EQ(previewCentre(), QColor(Qt::blue));
    addPicture(group_, "p2", Qt::green); // replaces it under another spelling
    window().Aktualisieren();
    settle();
    EXPECT_EQ(label(), "p2");
    EXPECT_EQ(previewCentre(), QColor(Qt::green));
    store::deletePicture(library(), group_, {u"p2"});
    window().Aktualisieren();
    settle();
    EXPECT_EQ(label(), "P1") << "the shown picture is gone";
}

TEST_F(MainPictures, TheFirstPicturesOfAGroupEndItsEmptyState) {
    startWith({});
    EXPECT_EQ(label(), app::text(7));
    addPicture(group_, "P1");
    window().Aktualisieren();
    settle();
    EXPECT_EQ(thumbnails(), QStringList{"P1"});
    EXPECT_EQ(label(), "P1");
}

TEST_F(MainPictures, AGroupThatVanishedIsShownEmpty) {
    startWith({"P1"});
    ASSERT_TRUE(QFile::remove(QString::fromStdString((library().folder / "Pumpen.stg").string())));
    window().Aktualisieren();
    settle();
    EXPECT_TRUE(thumbnails().isEmpty());
    EXPECT_EQ(label(), app::text(7));
    trigger("Men_Extras_0");
    EXPECT_TRUE(rows().isEmpty());
    EXPECT_TRUE(boxes_.take().isEmpty());
}

} // namespace
