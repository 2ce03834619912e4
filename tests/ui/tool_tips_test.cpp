// Tool tips of tree, label and list.
#include "app/texts.h"
#include "platform/held_file.h"
#include "platform/native_disk.h"
#include "ui/every_language.h"

#include <QApplication>
#include <QHelpEvent>
#include <QLabel>
#include <QToolTip>
#include <QTreeWidget>

namespace {

class ToolTips : public EveryLanguageTest {
  protected:
    ~ToolTips() override { QToolTip::hideText(); }

    // What the pointer is told when it rests there; its markup taken away.
    static QString toolTipAt(QWidget* widget, const QPoint& position) {
        const QString none = QStringLiteral("none");
        QToolTip::showText(widget->mapToGlobal(position), none, widget);
        QHelpEvent rest(QEvent::ToolTip, position, widget->mapToGlobal(position));
        QApplication::sendEvent(widget, &rest);
        const QString text = QToolTip::text();
        if (text == none) {
            return {}; // and on its way out
        }
        return text.mid(text.indexOf(u'>') + 1).chopped(4); // <p ...> and </p>
    }

    QString nodeToolTip(const QString& path) {
        const QRect row = tree()->visualItemRect(node(path));
        return toolTipAt(tree()->viewport(), row.center());
    }

    QString cellToolTip(int row, int column) {
        auto* list = find<QTreeWidget>("lvwInfo");
        const QModelIndex index = list->model()->index(row, column);
        return toolTipAt(list->viewport(), list->visualRect(index).center());
    }
};

INSTANTIATE_TEST_SUITE_P(Languages, ToolTips, EveryLanguageTest::all());

TEST_P(ToolTips, NamesThatAreCutAreShownWhole) {
    const QString group = "Pumpen & Motoren  aus Grauguss";
    const QString picture = "Umwälzpumpe & Motor, von vorn";
    const auto pumps = makeGroup("P");
    addPicture(makeGroup(group, pumps), picture);
    addPicture(pumps, "kurz");
    start();
    trigger("Men_Extras_0");
    clickNode("P");
    EXPECT_EQ(nodeToolTip("P"), "");
    EXPECT_EQ(cellToolTip(0, 0), "");
    auto* label = find<QLabel>("lblAktuell");
    EXPECT_EQ(toolTipAt(label, label->rect().center()), "");

    window().resize(window().minimumWidth(), 700);
    node("P")->setExpanded(true);
    clickNode("P/" + group);
    tree()->setFixedWidth(120);
    label->setFixedWidth(80);
    EXPECT_EQ(nodeToolTip("P/" + group), group.toHtmlEscaped());
    EXPECT_EQ(cellToolTip(0, 0), picture.toHtmlEscaped());
    EXPECT_EQ(toolTipAt(label, label->rect().center()), picture.toHtmlEscaped());
}

TEST_P(ToolTips, TheSizeCellTellsTheBytes) {
    const auto group = makeGroup("Pumpen");
    addPicture(group, "P1");
    const auto bytes = store::readGroupSize(library(), group).bytes - QString("PumpenNone").size();
    start();
    trigger("Men_Extras_0");
    clickNode("Pumpen");
    find<QTreeWidget>("lvwInfo")->setColumnWidth(1, 200);
    EXPECT_EQ(cellToolTip(0, 1), QString::number(bytes) + say(" Bytes", " bytes"));
    EXPECT_EQ(cellToolTip(0, 4), "");
}

TEST_P(ToolTips, AnUnreadableNodeTellsTheCauseInTheWindowsLanguage) {
    makeGroup("Pumpen");
    const auto path = library().folder / "Pumpen.stg";
    auto file = holdLocked(path);
    start();
    const QString cause = say("Die Datei wird von einem anderen Programm benutzt.",
                              "Another program is using the file.");
    EXPECT_EQ(nodeToolTip("Pumpen"), QString::fromStdString(path.string()) + u'\n' + cause);
}

} // namespace
