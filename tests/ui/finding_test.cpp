// Finding pictures and groups by what is typed into the menu bar's field.
#include "finding/name_index.h"
#include "store/picture_operations.h"
#include "ui/every_language.h"
#include "ui/main_window_fixture.h"

#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenuBar>
#include <QTest>
#include <QTreeWidget>

namespace {

using finding::FileNames;
using finding::NameIndex;
using finding::Words;

// --- The index

FileNames groupOf(const std::vector<std::pair<const char16_t*, const char*>>& pictures) {
    finding::NamedGroup group{store::topLevelAddress(u"Behälter"), "Behälter", "Behälter", {}};
    for (const auto& [name, type] : pictures) {
        group.pictures.push_back({{name}, type});
    }
    return FileNames({group});
}

QStringList foundIn(const FileNames& names, const QString& text) {
    std::vector<finding::Match> matches;
    const std::size_t count = names.find(Words(text), 100, matches);
    EXPECT_EQ(count, matches.size());
    QStringList found;
    for (const finding::Match& match : matches) {
        found.append(match.name);
    }
    return found;
}

TEST(NameIndexTest, WordsAreComparedWithoutCaseAndAccents) {
    const FileNames names = groupOf({{u"Rührwerk GROẞ", "BMP"}, {u"rotor élan", "BMP"}});
    EXPECT_EQ(foundIn(names, "ruhr"), QStringList{"Rührwerk GROẞ"});
    EXPECT_EQ(foundIn(names, "RÜHR gross"), QStringList{"Rührwerk GROẞ"});
    EXPECT_EQ(foundIn(names, "Élan ROTOR"), QStringList{"rotor élan"});
    EXPECT_EQ(foundIn(names, "behalter"), QStringList{"Behälter"});
}

TEST(NameIndexTest, AllWordsMustMatchAndATypeIsAWholeWord) {
    const FileNames names =
        groupOf({{u"Pumpe rot", "GIF"}, {u"Pumpe blau", "WMF"}, {u"Gifttank", "BMP"}});
    EXPECT_EQ(foundIn(names, "pumpe gif"), QStringList{"Pumpe rot"});
    EXPECT_EQ(foundIn(names, "pumpe rot blau"), QStringList());
    EXPECT_EQ(foundIn(names, "gif"), (QStringList{"Pumpe rot", "Gifttank"}));
    EXPECT_EQ(foundIn(names, "wm"), QStringList()) << "half a type";
    EXPECT_EQ(foundIn(names, "  "), QStringList());
}

TEST(NameIndexTest, AWordThatOccursTwiceInANameIsOneMatch) {
    const FileNames names = groupOf({{u"aaaa", "BMP"}, {u"aa", "BMP"}});
    EXPECT_EQ(foundIn(names, "a"), (QStringList{"Behälter", "aaaa", "aa"}));
}

TEST(NameIndexTest, MoreMatchesThanWantedAreCountedOnly) {
    NameIndex index;
    for (const char16_t* file : {u"B", u"a", u"C"}) {
        index.put({file}, std::make_shared<const FileNames>(std::vector<finding::NamedGroup>{
                              {store::topLevelAddress(file),
                               QString::fromUtf16(file),
                               QString::fromUtf16(file),
                               {{{u"x1"}, "BMP"}, {{u"x2"}, "BMP"}}}}));
    }
    index.remove({u"C"});
    const NameIndex::Result result = index.find(Words("x"), 3);
    EXPECT_EQ(result.total, 4U);
    ASSERT_EQ(result.matches.size(), 3U);
    EXPECT_EQ(result.matches.front().path, "a") << "in the order of the library";
}

// --- The window

class Finding : public MainWindowTest {
  protected:
    void startFinding(const QString& text) {
        window().activateWindow();
        QTest::keyClick(&window(), Qt::Key_F, Qt::ControlModifier);
        QTest::keyClicks(field(), text);
        settleFinding();
    }

    void settleFinding() {
        ASSERT_TRUE(QTest::qWaitFor([this] { return !window().isFinding(); }, 20000));
        QCoreApplication::processEvents();
        settle();
    }

    QLineEdit* field() { return find<QLineEdit>("txtFind"); }
    QListView* list() { return find<QListView>("lvwFind"); }
    bool areResultsShown() { return find<QWidget>("fraFind")->isVisible(); }

    QStringList results() {
        QStringList found;
        for (int row = 0; row < list()->model()->rowCount(); ++row) {
            found.append(list()->model()->index(row, 0).data(Qt::AccessibleTextRole).toString());
        }
        return found;
    }

    store::GroupAddress pumps_ = makeGroup("Pumpen");
    store::GroupAddress rotary_ = makeGroup("Kreisel", pumps_);
    store::GroupAddress valves_ = makeGroup("Ventile");
};

TEST_F(Finding, EnterGoesToThePictureOnItsPage) {
    for (int i = 1000; i < 1200; ++i) {
        addPicture(rotary_, QStringLiteral("P%1").arg(i));
    }
    addPicture(valves_, "P1 Kugel");
    start();
    clickNode("Ventile");
    startFinding("p11");
    EXPECT_EQ(results().size(), 100);
    QTest::keyClicks(field(), "55");
    settleFinding();
    EXPECT_EQ(results(), QStringList{"P1155, Pumpen / Kreisel"});
    EXPECT_EQ(selectedNode(), "Ventile") << "nothing was chosen yet";
    QTest::keyClick(field(), Qt::Key_Return);
    settle();
    EXPECT_FALSE(areResultsShown());
    EXPECT_TRUE(field()->text().isEmpty());
    EXPECT_EQ(selectedNode(), "Kreisel");
    EXPECT_EQ(label(), "P1155");
    EXPECT_TRUE(thumbnails().contains("P1155"));
    EXPECT_TRUE(find<QWidget>("shpVorschau")->hasFocus());
    // Among the rows as well.
    trigger("Men_Extras_0");
    settle();
    startFinding("kugel");
    QTest::keyClick(field(), Qt::Key_Down);
    QTest::keyClick(list(), Qt::Key_Return);
    settle();
    EXPECT_EQ(selectedNode(), "Ventile");
    EXPECT_EQ(find<QTreeWidget>("lvwInfo")->currentItem()->text(0), "P1 Kugel");
}

TEST_F(Finding, EscapeGoesBackToWhereOneWas) {
    addPicture(valves_, "V1");
    addPicture(valves_, "V2");
    addPicture(pumps_, "P1");
    start();
    clickNode("Ventile");
    QTest::mouseClick(thumbnail("V2"), Qt::LeftButton);
    settle();
    ASSERT_TRUE(find<QWidget>("shpVorschau")->hasFocus());
    for (const bool isAmongResults : {false, true}) {
        startFinding("p1");
        ASSERT_TRUE(areResultsShown());
        if (isAmongResults) {
            QTest::keyClick(field(), Qt::Key_Down);
            ASSERT_TRUE(list()->hasFocus());
        }
        QTest::keyClick(isAmongResults ? static_cast<QWidget*>(list()) : field(), Qt::Key_Escape);
        EXPECT_FALSE(areResultsShown());
        EXPECT_EQ(selectedNode(), "Ventile");
        EXPECT_EQ(label(), "V2");
        EXPECT_TRUE(find<QWidget>("shpVorschau")->hasFocus());
    }
}

TEST_F(Finding, AClickGoesToAGroup) {
    start();
    clickNode("Ventile");
    startFinding("KREIS");
    ASSERT_EQ(results(), QStringList{"Kreisel, Pumpen / Kreisel"});
    QTest::mouseClick(list()->viewport(), Qt::LeftButton, {},
                      list()->visualRect(list()->model()->index(0, 0)).center());
    settle();
    EXPECT_EQ(selectedNode(), "Kreisel");
}

TEST_F(Finding, WhatOthersAndTheWindowChangeIsFound) {
    addPicture(valves_, "V1");
    start();
    startFinding("neu");
    EXPECT_EQ(results(), QStringList());
    EXPECT_EQ(find<QLabel>("lblFind")->text(), "Nichts gefunden");
    addPicture(valves_, "Neues Ventil");
    makeGroup("Neuland");
    window().lookForChanges();
    settle();
    settleFinding();
    EXPECT_EQ(results(), (QStringList{"Neuland, Neuland", "Neues Ventil, Ventile"}));
    store::removeGroupFile(library(), {u"Neuland"});
    window().refresh();
    settleFinding();
    EXPECT_EQ(results(), QStringList{"Neues Ventil, Ventile"});
}

TEST_F(Finding, TheMenuBarIsAsHighAsWithoutTheFieldWhichEndsWithThePictures) {
    start();
    auto* bar = window().menuBar();
    const int height = bar->sizeHint().height();
    for (const int width : {window().minimumWidth(), 900}) {
        window().resize(width, 640);
        settle();
        EXPECT_EQ(bar->sizeHint().height(), height);
        const QRect place(field()->mapTo(bar, QPoint()), field()->size());
        EXPECT_LT(bar->actionGeometry(bar->actions().last()).right(), place.left());
        EXPECT_EQ(place.right(), find<QWidget>("shpVorschau")->geometry().right());
    }
    bar->setCornerWidget(nullptr);
    EXPECT_EQ(bar->sizeHint().height(), height);
}

} // namespace
