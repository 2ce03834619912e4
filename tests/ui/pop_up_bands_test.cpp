// The two pop-up bands as mouse and keyboard reach them: which band comes where, and what each of
// its tools does when it is chosen by key.
#include "ui/every_language.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QLabel>
#include <QMenu>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>
#include <QWindow>

namespace {

class PopUpBands : public EveryLanguageTest {
  protected:
    // Pumpen, with the picture P1, and below it Kreisel with two vector pictures.
    void startWithPictures() {
        const auto top = makeGroup("Pumpen");
        const auto below = makeGroup("Kreisel", top);
        addPicture(top, "P1");
        addPicture(below, "K1", Qt::red, "wmf");
        addPicture(below, "K2", Qt::blue, "wmf");
        start();
        clickNode("Pumpen/Kreisel");
    }

    // As a window hands the context-menu key to the widget that has the focus: at its input cursor,
    // wherever that is.
    void pressMenuKey(QWidget* widget) {
        QApplication::setActiveWindow(&window()); // a dialog may have been it
        widget->setFocus();
        const QPoint cursor = widget->inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
        QContextMenuEvent event(QContextMenuEvent::Keyboard, cursor, widget->mapToGlobal(cursor));
        QApplication::sendEvent(widget, &event);
    }

    // The band that the key opens, which must begin within that part of the widget; "none" without.
    std::string bandByKey(QWidget* widget, const QRect& part = {}) {
        pressMenuKey(widget);
        auto* band = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (band == nullptr) {
            return "none";
        }
        const QPoint corner = widget->mapFromGlobal(band->pos());
        EXPECT_TRUE(part.adjusted(-1, 2, 1, 1).contains(corner)) << corner.x() << "," << corner.y();
        band->close();
        return band->objectName().toStdString();
    }

    static QRect rowOf(const QTreeWidget* view, const QTreeWidgetItem* item) {
        const QRect row = view->visualItemRect(item);
        return {view->viewport()->mapTo(view, row.topLeft()), row.size()};
    }

    // Chooses a tool of the open band by going down to it: "CAPTION: DIALOG", or what kind of box
    // came in the place of a dialog.
    QString choose(int number) {
        auto* band = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (band == nullptr) {
            return "no band";
        }
        for (int i = 0; i < number; ++i) {
            QTest::keyClick(band, Qt::Key_Down);
        }
        QString chosen = band->activeAction()->text().remove(u'&') + ": ";
        QTimer looking;
        QObject::connect(&looking, &QTimer::timeout, [&] {
            if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                chosen += dialog->objectName();
                dialog->close();
            }
        });
        looking.start(0);
        QTest::keyClick(band, Qt::Key_Return);
        for (const auto& box : boxes_.take()) {
            chosen += box.buttons == app::Buttons::YesNo ? "question" : "box";
        }
        return chosen;
    }

    QString chooseEachOf(int count, QWidget* widget) {
        QStringList all;
        for (int number = 1; number <= count; ++number) {
            pressMenuKey(widget);
            all.append(choose(number));
        }
        return all.join(", ");
    }
};

INSTANTIATE_TEST_SUITE_P(Languages, PopUpBands, EveryLanguageTest::all());

TEST_P(PopUpBands, TheKeyOpensTheBandAtWhatIsSelected) {
    startWithPictures();
    EXPECT_EQ(bandByKey(tree(), rowOf(tree(), node("Pumpen/Kreisel"))), "Band2");
    clickNode("Pumpen");
    EXPECT_EQ(bandByKey(tree(), rowOf(tree(), node("Pumpen"))), "Band2");

    clickNode("Pumpen/Kreisel");
    auto* strip = find<QWidget>("shpVorschau");
    EXPECT_EQ(bandByKey(strip, thumbnail("K1")->geometry()), "Band1");
    QTest::keyClick(strip, Qt::Key_End);
    EXPECT_EQ(bandByKey(strip, thumbnail("K2")->geometry()), "Band1");

    trigger("Men_Extras_0");
    auto* list = find<QTreeWidget>("lvwInfo");
    QTest::keyClick(list, Qt::Key_Down);
    EXPECT_EQ(bandByKey(list, rowOf(list, list->topLevelItem(1))), "Band1");
}

TEST_P(PopUpBands, TheKeyBringsTheSelectedRowBack) {
    const auto first = makeGroup("A0");
    for (int i = 1; i <= 20; ++i) {
        makeGroup("A" + QString::number(i), first);
        addPicture(first, "P" + QString::number(i));
    }
    start();
    window().resize(window().minimumSize());
    clickNode("A0");
    node("A0")->setExpanded(true);
    trigger("Men_Extras_0");
    auto* list = find<QTreeWidget>("lvwInfo");
    for (QTreeWidget* view : {tree(), list}) {
        view->scrollToBottom();
        ASSERT_LT(view->visualItemRect(view->topLevelItem(0)).bottom(), 0);
        EXPECT_EQ(bandByKey(view, view->rect()), view == list ? "Band1" : "Band2");
    }
}

TEST_P(PopUpBands, TheKeyOpensNothingWhereNoPictureIs) {
    makeGroup("Leer");
    start();
    clickNode("Leer");
    EXPECT_EQ(bandByKey(find<QWidget>("shpVorschau")), "none");
    trigger("Men_Extras_0");
    EXPECT_EQ(bandByKey(find<QTreeWidget>("lvwInfo")), "none");
}

TEST_P(PopUpBands, ARightPressSelectsTheNodeForTheNextCommand) {
    startWithPictures();
    clickNode("Pumpen");
    ASSERT_EQ(thumbnails(), QStringList{"P1"});
    const QPoint place = tree()->visualItemRect(node("Pumpen/Kreisel")).center();
    QTest::mousePress(window().windowHandle(), Qt::RightButton, {},
                      tree()->viewport()->mapTo(&window(), place));
    settle();
    EXPECT_EQ(selectedNode(), "Kreisel");
    EXPECT_EQ(thumbnails(), (QStringList{"K1", "K2"}));
    EXPECT_EQ(label(), "K1");
    ASSERT_TRUE(find<QMenu>("Band2")->isVisible());
    find<QMenu>("Band2")->close();
    inDialog([&] { trigger("gInfo"); },
             [](QDialog& dialog) {
                 EXPECT_EQ(dialog.findChild<QLabel*>("lblName2")->text(), "Kreisel");
             });
}

TEST_P(PopUpBands, TheToolsDoWhatTheySayInTheirOrder) {
    startWithPictures();
    EXPECT_EQ(chooseEachOf(4, find<QWidget>("shpVorschau")).toStdString(),
              say("Bild umbenennen...: frmEditSymbol, Bild bearbeiten...: box, "
                  "Bild löschen: question, Bild-Info...: frmInfos",
                  "Rename picture...: frmEditSymbol, Edit picture...: box, "
                  "Delete picture: question, Picture-Info...: frmInfos")
                  .toStdString());
    EXPECT_EQ(chooseEachOf(7, tree()).toStdString(),
              say("Neue Gruppe erstellen...: frmNeueGruppe, Gruppe umbenennen...: frmEditGruppe, "
                  "Gruppe löschen: question, Gruppen-Info...: frmGroupInfo, "
                  "Bild hinzufügen...: frmOpen, Gruppe aus Verzeichnis erstellen...: frmCreate, "
                  "Gruppe importieren...: frmImport",
                  "Create new group...: frmNeueGruppe, Rename group...: frmEditGruppe, "
                  "Delete group: question, Group-Info...: frmGroupInfo, Add picture...: frmOpen, "
                  "Create group out of directory...: frmCreate, Import group...: frmImport")
                  .toStdString());
}

} // namespace
