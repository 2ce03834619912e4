// The pictures of an icon in the picture information.
#include "imaging/picture_bytes.h"
#include "platform/paths.h"
#include "store/picture_operations.h"
#include "ui/every_language.h"

#include <QApplication>
#include <QClipboard>
#include <QGroupBox>
#include <QListWidget>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <QUrl>

namespace {

using imaging::testing::iconFile;
using imaging::testing::iconFrame32;

class FrameStripTest : public EveryLanguageTest {
  protected:
    void addCursor(const store::GroupAddress& group) {
        const auto bytes = iconFile(2, {{iconFrame32(1, 1, {0xFF00FF00}, {0}), 0, 0},
                                        {iconFrame32(2, 1, {0x80FF0000, 0xFFFF0000}, {0}), 1, 0}});
        home_.write("arrow.cur", QByteArray(reinterpret_cast<const char*>(bytes.data()),
                                            static_cast<qsizetype>(bytes.size())));
        store::addPicture(library(), group, {u"Arrow"},
                          platform::toFilePath(home_.at("arrow.cur")));
    }
};

INSTANTIATE_TEST_SUITE_P(Languages, FrameStripTest, EveryLanguageTest::all());

TEST_P(FrameStripTest, ShowsEveryFrameOfACursorAndCopiesTheChosenOne) {
    const auto group = makeGroup("Pumpen");
    addCursor(group);
    start();
    clickNode("Pumpen");
    inDialog([&] { trigger("bInfo"); },
             [&](QDialog& dialog) {
                 auto* list = dialog.findChild<QListWidget*>("lvwBilder");
                 ASSERT_TRUE(QTest::qWaitFor([&] { return list->count() == 2; }));
                 EXPECT_EQ(list->item(0)->text(),
                           say("1 \u00d7 1\n32 Bit\nPunkt 0, 0", "1 \u00d7 1\n32 bit\nSpot 0, 0"));
                 EXPECT_EQ(list->item(1)->text(), say("2 \u00d7 1\n32 Bit\nPunkt 1, 0\nVorschau",
                                                      "2 \u00d7 1\n32 bit\nSpot 1, 0\nThumbnail"));
                 EXPECT_EQ(list->currentRow(), 1);
                 QTest::mouseClick(dialog.findChild<QPushButton*>("cmdKopieren"), Qt::LeftButton);
                 EXPECT_EQ(QGuiApplication::clipboard()->image().pixelColor(0, 0).alpha(), 0x80);
                 list->setCurrentRow(0);
                 QApplication::setActiveWindow(&dialog);
                 list->setFocus();
                 QTest::keyClick(list, Qt::Key_C, Qt::ControlModifier);
                 EXPECT_EQ(QGuiApplication::clipboard()->image().size(), QSize(1, 1));
                 const std::unique_ptr<QMimeData> dragged(
                     list->model()->mimeData({list->model()->index(1, 0)}));
                 EXPECT_EQ(dragged->imageData().value<QImage>().size(), QSize(2, 1));
                 ASSERT_EQ(dragged->urls().size(), 1);
                 const QString file = dragged->urls().front().toLocalFile();
                 EXPECT_TRUE(file.endsWith("/Arrow 2 x 1.png")) << file.toStdString();
                 EXPECT_EQ(QImage(file).pixelColor(0, 0).alpha(), 0x80);
             });
}

TEST_P(FrameStripTest, IsNotThereForOtherPictures) {
    addPicture(makeGroup("Pumpen"), "P1");
    start();
    clickNode("Pumpen");
    inDialog([&] { trigger("bInfo"); },
             [&](QDialog& dialog) {
                 EXPECT_FALSE(dialog.findChild<QGroupBox*>("fraBilder")->isVisible());
             });
}

} // namespace
