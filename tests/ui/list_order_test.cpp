// In which order the list of pictures stands.
#include "store/picture_operations.h"
#include "ui/main_window_fixture.h"

#include <QHeaderView>
#include <QTest>
#include <QTreeWidget>

namespace {

class ListOrder : public MainWindowTest {
  protected:
    void startWithList() {
        for (const char* name : {"P10", "p2", "Öl", "Zu", "Ofen"}) {
            addPicture(group_, QString::fromUtf8(name));
        }
        addUndecodable(group_, "Klein");
        start();
        clickNode("Pumpen");
        trigger("Men_Extras_0");
        settle();
        stored_ = rows();
    }

    QTreeWidget* list() { return find<QTreeWidget>("lvwInfo"); }

    void clickHeader(int column) {
        QHeaderView* header = list()->header();
        const QPoint place(header->sectionViewportPosition(column) + 20, header->height() / 2);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, place);
    }

    store::GroupAddress group_ = makeGroup("Pumpen");
    QStringList stored_;
    const QStringList byName_{"Klein", "Ofen", "Öl", "p2", "P10", "Zu"};
};

TEST_F(ListOrder, FollowsTheHeadersAndKeysAndIsRemembered) {
    startWithList();
    ASSERT_NE(stored_, byName_);
    QTest::mouseClick(list()->viewport(), Qt::LeftButton, {},
                      list()->visualItemRect(list()->topLevelItem(4)).center());
    const QString selected = label();
    clickHeader(0);
    EXPECT_EQ(rows(), byName_);
    EXPECT_EQ(list()->currentItem()->text(0), selected);
    clickHeader(0);
    EXPECT_EQ(rows(), QStringList(byName_.rbegin(), byName_.rend()));
    settle();
    restart();
    clickNode("Pumpen");
    trigger("Men_Extras_0");
    settle();
    EXPECT_EQ(rows(), QStringList(byName_.rbegin(), byName_.rend()));
    QTest::keyClick(list(), Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(rows(), stored_);
    QTest::keyClick(list(), Qt::Key_2, Qt::ControlModifier);
    EXPECT_EQ(rows().front(), "Klein") << "by size";
    settle();
}

TEST_F(ListOrder, HoldsForWhatOthersChangeAndForNewNames) {
    startWithList();
    clickHeader(0);
    list()->setCurrentItem(list()->topLevelItem(3)); // p2
    addPicture(group_, "Mitte");
    store::deletePicture(library(), group_, {u"Ofen"});
    window().lookForChanges();
    settle();
    EXPECT_EQ(rows(), (QStringList{"Klein", "Mitte", "Öl", "p2", "P10", "Zu"}));
    EXPECT_EQ(list()->currentItem()->text(0), "p2");
    // What is selected goes: the group's next one takes its place, wherever that stands.
    const auto next = store::placeOfPicture(library(), group_, {u"p2"})->beside;
    store::deletePicture(library(), group_, {u"p2"});
    window().lookForChanges();
    settle();
    EXPECT_EQ(label(), QString::fromStdU16String(next->text));
    EXPECT_EQ(list()->currentItem()->text(0), label());
    window().PictureRenamed(group_, label());
    EXPECT_EQ(rows(), (QStringList{"Klein", "Mitte", "Öl", "P10", "Zu"}));
}

} // namespace
