// The keys that menus and dialogs underline, and what they do together with Alt.
#include "app/patience.h"
#include "ui/every_language.h"
#include "ui/mnemonics.h"

#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QRegularExpression>
#include <QTest>

namespace {

class Mnemonics : public EveryLanguageTest {
  protected:
    void startActive() {
        addPicture(makeGroup("Pumpen"), "P1");
        start();
        clickNode("Pumpen");
        QApplication::setActiveWindow(&window());
    }
};

INSTANTIATE_TEST_SUITE_P(Languages, Mnemonics, EveryLanguageTest::all());

TEST_P(Mnemonics, AreDifferentWithinEachMenu) {
    startActive();
    const auto menus = window().findChildren<QMenu*>(QRegularExpression("^Men_"));
    EXPECT_EQ(menus.size(), 4);
    for (const QMenu* menu : menus) {
        SCOPED_TRACE(menu->objectName().toStdString());
        QStringList captions;
        for (const QAction* action : menu->actions()) {
            captions.append(action->text());
        }
        expectOwnMnemonics(captions);
    }
}

TEST_P(Mnemonics, OpenTheMenusAndChooseTheirItems) {
    struct Way {
        const char* german;
        const char* english; // the menu's letter and the item's
        const char* menu;
        const char* dialog;
    };
    startActive();
    for (const Way& way : {Way{"dn", "fn", "Men_Datei", "frmNeueGruppe"},
                           Way{"bm", "en", "Men_Bearbeiten", "frmEditGruppe"},
                           Way{"bi", "ei", "Men_Bearbeiten", "frmInfos"},
                           Way{"ee", "xe", "Men_Extras", "frmEditorOptionen"},
                           Way{"hi", "hi", "Men_Hilfe", "frmInfo"}}) {
        const char* letters = isGerman() ? way.german : way.english;
        const auto choose = [&](const char* focused) {
            QApplication::setActiveWindow(&window()); // a dialog may have been it
            auto* focus = find<QWidget>(focused);
            focus->setFocus();
            QTest::keyClick(focus, letters[0], Qt::AltModifier);
            QWidget* opened = QApplication::activePopupWidget();
            ASSERT_NE(opened, nullptr) << letters;
            EXPECT_EQ(opened->objectName(), way.menu);
            QTest::keyClick(opened, letters[1]);
        };
        for (const char* focused : {"tvwGruppen", "shpVorschau"}) {
            inDialog([&] { choose(focused); },
                     [&](QDialog& dialog) { EXPECT_EQ(dialog.objectName(), way.dialog); });
        }
    }
}

TEST_P(Mnemonics, OfADialogReachTheirControls) {
    startActive();
    inDialog([&] { trigger("bInfo"); },
             [&](QDialog& dialog) {
                 QApplication::setActiveWindow(&dialog);
                 const auto* width = dialog.findChild<QLabel*>("lblBreite2");
                 const auto becomes = [&](Qt::Key key, const char* text) {
                     QTest::keyClick(dialog.focusWidget(), key, Qt::AltModifier);
                     return until([&] { return width->text() == text; });
                 };
                 EXPECT_TRUE(becomes(Qt::Key_T, "300"));
                 EXPECT_TRUE(becomes(Qt::Key_P, "20"));
             });
}

} // namespace
