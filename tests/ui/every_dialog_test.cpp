// What holds for every dialog: it is reached by its command, names its controls for those who do
// not see them, leads the Tab key in the order of reading, shows its topic of the help, and goes
// away with Escape, changing nothing.
#include "app/help.h"
#include "app/patience.h"
#include "ui/every_language.h"
#include "ui/mnemonics.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QTest>

#include <algorithm>

namespace {

enum class Place { AsTheDesktopLikes, Centred };

struct DialogCase {
    const char* action;
    const char* dialog;
    const char* helpButton; // none: F1 alone shows the topic
    int topic;
    Place place;
};

constexpr DialogCase kDialogs[] = {
    {"gNew", "frmNeueGruppe", nullptr, 1, Place::AsTheDesktopLikes},
    {"gCreate", "frmCreate", "cmdHelp", 2, Place::Centred},
    {"gImport", "frmImport", "cmdHelp", 3, Place::Centred},
    {"gRename", "frmEditGruppe", "cmdHilfe", 7, Place::AsTheDesktopLikes},
    {"gInfo", "frmGroupInfo", "cmdHelp", 8, Place::AsTheDesktopLikes},
    {"gOpen", "frmOpen", "cmdHilfe", 6, Place::Centred},
    {"bEdit", "frmOptionenBMP", nullptr, 9, Place::Centred},
    {"bRename", "frmEditSymbol", "cmdHilfe", 4, Place::AsTheDesktopLikes},
    {"bInfo", "frmInfos", "cmdZur_ck", 5, Place::Centred},
    {"Men_Extras_1", "frmEditorOptionen", nullptr, 1, Place::AsTheDesktopLikes},
    {"Men_Datei_8", "frmKatalog", nullptr, 1, Place::AsTheDesktopLikes},
    {"Men_Hilfe_3", "frmInfo", nullptr, 1, Place::Centred},
};

std::string nameOf(const QWidget* widget) {
    return (widget->objectName() + " (" + widget->metaObject()->className() + ")").toStdString();
}

bool takesTab(const QWidget* widget) {
    return widget->isVisible() && widget->isEnabled() &&
           (widget->focusPolicy() & Qt::TabFocus) != 0;
}

class EveryDialog : public EveryLanguageTest {
  protected:
    void startTwoDeep() {
        const auto group = makeGroup("Kreisel", makeGroup("Pumpen"));
        addPicture(group, "P1");
        start();
        clickNode("Pumpen/Kreisel");
        QApplication::setActiveWindow(&window());
    }
};

INSTANTIATE_TEST_SUITE_P(Languages, EveryDialog, EveryLanguageTest::all());

void expectNamed(QWidget& dialog) {
    EXPECT_FALSE(dialog.windowTitle().isEmpty());
    for (const QWidget* control : dialog.findChildren<QWidget*>()) {
        if (!takesTab(control)) {
            continue;
        }
        auto* accessible = QAccessible::queryAccessibleInterface(const_cast<QWidget*>(control));
        ASSERT_NE(accessible, nullptr) << nameOf(control);
        EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty()) << nameOf(control);
    }
}

QStringList captionsIn(const QWidget& dialog) {
    QStringList captions;
    for (const auto* button : dialog.findChildren<QAbstractButton*>()) {
        captions.append(button->text());
    }
    for (const auto* label : dialog.findChildren<QLabel*>()) {
        captions.append(label->buddy() != nullptr ? label->text() : QString());
    }
    return captions;
}

// The Tab key comes to every control once, and never goes back up and to the left.
void expectReadingOrder(QWidget& dialog) {
    QApplication::setActiveWindow(&dialog);
    QList<QWidget*> order;
    for (QWidget* now = dialog.focusWidget(); now != nullptr && !order.contains(now);
         now = QApplication::focusWidget()) {
        order.append(now);
        QTest::keyClick(now, Qt::Key_Tab);
    }
    int tabbed = 0;
    for (const QWidget* control : dialog.findChildren<QWidget*>()) {
        const auto* radio = qobject_cast<const QAbstractButton*>(control);
        const bool isOtherRadio = radio != nullptr && radio->autoExclusive() && !radio->isChecked();
        tabbed += takesTab(control) && !isOtherRadio ? 1 : 0;
    }
    EXPECT_EQ(order.size(), tabbed);
    // The walk begins where the dialog wants the user; it is read from the first control on.
    const auto placeOf = [&](QWidget* control) { return control->mapTo(&dialog, QPoint(0, 0)); };
    const auto first = std::min_element(order.begin(), order.end(), [&](QWidget* a, QWidget* b) {
        return std::pair(placeOf(a).y(), placeOf(a).x()) <
               std::pair(placeOf(b).y(), placeOf(b).x());
    });
    std::rotate(order.begin(), first, order.end());
    for (qsizetype i = 1; i < order.size(); ++i) {
        const QPoint before = placeOf(order[i - 1]);
        const QPoint now = placeOf(order[i]);
        EXPECT_TRUE(now.y() > before.y() || now.x() > before.x())
            << nameOf(order[i]) << " after " << nameOf(order[i - 1]);
    }
}

void expectPlace(const QDialog& dialog, Place place) {
    if (place == Place::Centred) {
        const QRect screen = dialog.screen()->geometry();
        EXPECT_EQ(dialog.x(), (screen.width() - dialog.width()) / 2);
        EXPECT_EQ(dialog.y(), (screen.height() - dialog.height()) / 2);
    }
}

void expectHelp(QDialog& dialog, const DialogCase& entry) {
    QList<int> topics;
    app::setHelpHandler(
        [&](const app::HelpCall& call) { topics.append(static_cast<int>(call.topic)); });
    QList<int> expected{entry.topic};
    if (entry.helpButton != nullptr) {
        QTest::mouseClick(dialog.findChild<QPushButton*>(entry.helpButton), Qt::LeftButton);
        expected.append(entry.topic);
    }
    QTest::keyClick(dialog.focusWidget(), Qt::Key_F1);
    EXPECT_EQ(topics, expected);
    EXPECT_TRUE(dialog.isVisible());
    app::setHelpHandler({});
}

TEST_P(EveryDialog, NamesItsControlsLeadsTheTabKeyHelpsAndLeavesByEscape) {
    startTwoDeep();
    for (const DialogCase& entry : kDialogs) {
        SCOPED_TRACE(entry.dialog);
        inDialog([&] { trigger(entry.action); },
                 [&](QDialog& dialog) {
                     EXPECT_EQ(dialog.objectName(), entry.dialog);
                     EXPECT_EQ(dialog.parentWidget(), &window());
                     expectNamed(dialog);
                     expectOwnMnemonics(captionsIn(dialog));
                     expectReadingOrder(dialog);
                     expectPlace(dialog, entry.place);
                     expectHelp(dialog, entry);
                     QTest::keyClick(&dialog, Qt::Key_Escape);
                     EXPECT_FALSE(dialog.isVisible());
                 });
    }
    EXPECT_TRUE(boxes_.take().isEmpty());
    EXPECT_EQ(thumbnails(), QStringList{"P1"});
    EXPECT_EQ(storagesFolder(), QStringList{"Pumpen.stg"});
}

TEST_P(EveryDialog, TheMainWindowNamesItsControlsAndLeadsTheTabKeyAsWell) {
    startTwoDeep();
    expectNamed(window());
    find<QWidget>("tvwGruppen")->setFocus();
    expectReadingOrder(window());
    trigger("Men_Extras_0"); // the list in the place of the thumbnails
    expectNamed(window());
    find<QWidget>("tvwGruppen")->setFocus();
    expectReadingOrder(window());
}

TEST_P(EveryDialog, TheMainWindowsControlsAreNamed) {
    start();
    expectNamed(window()); // of an empty library
    const auto group = makeGroup("Pumpen");
    addPicture(group, "P1");
    window().refresh();
    settle();
    clickNode("Pumpen");
    expectNamed(window());
    trigger("Men_Extras_0");
    expectNamed(window());
    QTest::keyClicks(find<QWidget>("txtFind"), "P1");
    ASSERT_TRUE(until([&] { return find<QWidget>("lvwFind")->isVisible(); }));
    expectNamed(window());
}

} // namespace
