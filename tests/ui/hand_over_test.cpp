// Handing a picture over, started alone and by another program.
#include "app/settings.h"
#include "app/texts.h"
#include "platform/held_file.h"
#include "store/picture_operations.h"
#include "ui/main_window_fixture.h"

#include <QAction>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

namespace {

using browser::StartMode;

class HandOver : public MainWindowTest {
  protected:
    void startTwoDeep(StartMode mode) {
        group_ = makeGroup("Kreisel", makeGroup("Pumpen"));
        addPicture(group_, "P1", Qt::red);
        addPicture(group_, "P2", Qt::green, "jpg"); // by its file's name
        start(mode);
        selected_.emplace(&window(), &browser::frmMain::PictureSelected);
        unloaded_.emplace(&window(), &browser::frmMain::unloaded);
        clickNode("Pumpen/Kreisel");
    }

    void choose(const QString& name) { QTest::mouseClick(thumbnail(name), Qt::LeftButton); }

    // The path that the last event told, which is the value as well.
    QString told() {
        QString path = selected_->isEmpty() ? QString() : selected_->last()[0].toString();
        EXPECT_EQ(window().handOverValue(), path);
        return path;
    }

    QByteArray bytesOf(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QByteArray storedBytes(const char16_t* name) {
        const auto bytes = store::readPicture(library(), group_, {name}).bytes;
        return {reinterpret_cast<const char*>(bytes.data()), qsizetype(bytes.size())};
    }

    store::GroupAddress group_;
    std::optional<QSignalSpy> selected_;
    std::optional<QSignalSpy> unloaded_;
};

TEST_F(HandOver, CopiesTheShownPictureAndTellsWhereItIs) {
    startTwoDeep(StartMode::Server);
    choose("P2");
    trigger("bCopy");
    EXPECT_EQ(told(), app::settings().temporaryFolder() + "CopiedPicture.JPG");
    EXPECT_EQ(bytesOf(told()), storedBytes(u"P2"));
    choose("P1");
    trigger("Men_Datei_4");
    EXPECT_EQ(told(), app::settings().temporaryFolder() + "CopiedPicture.BMP");
    EXPECT_EQ(bytesOf(told()), storedBytes(u"P1"));
    EXPECT_EQ(selected_->size(), 2);
    EXPECT_TRUE(window().isVisible());
    EXPECT_TRUE(boxes_.take().isEmpty());
}

TEST_F(HandOver, AsAServerTheWindowHidesAndKeepsTheValueUntilItIsLeft) {
    startTwoDeep(StartMode::Server);
    trigger("Men_Datei_5");
    EXPECT_FALSE(told().isEmpty());
    EXPECT_FALSE(window().isVisible());
    EXPECT_TRUE(QFile::exists(told()));
    window().show();
    trigger("Men_Datei_6");
    EXPECT_FALSE(window().isVisible());
    EXPECT_EQ(window().handOverValue(), "");
    EXPECT_TRUE(unloaded_->isEmpty()) << "the other program ends it";
}

TEST_F(HandOver, AloneNobodyHearsOfItAndLeavingEndsTheWindow) {
    startTwoDeep(StartMode::Standalone);
    trigger("bCopy");
    EXPECT_TRUE(boxes_.take().isEmpty());
    EXPECT_TRUE(window().isVisible());
    trigger("bCopyEnd");
    EXPECT_FALSE(window().isVisible());
    EXPECT_EQ(unloaded_->size(), 1);
}

TEST_F(HandOver, WithoutSuchAPictureNothingIsToldAnywhere) {
    const auto empty = makeGroup("Leer");
    startTwoDeep(StartMode::Server);
    store::deletePicture(library(), group_, {u"P1"}); // still on the screen
    trigger("bCopy");
    EXPECT_EQ(label(), "P2");
    store::deletePicture(library(), group_, {u"P2"});
    trigger("bCopyEnd");
    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(label(), app::text(app::kTextNoPicture));
    clickNode("Leer");
    ASSERT_EQ(label(), app::text(app::kTextNoPicture));
    trigger("bCopy");
    trigger("Men_Datei_4");
    EXPECT_TRUE(selected_->isEmpty());
    EXPECT_TRUE(boxes_.take().isEmpty());
}

TEST_F(HandOver, BeforeAnyChoiceAndWithoutGroupsNothingHappens) {
    start(StartMode::Server);
    EXPECT_FALSE(find<QAction>("Men_Datei_4")->isEnabled());
    EXPECT_FALSE(find<QAction>("Men_Datei_5")->isEnabled());
    trigger("bCopy");
    addPicture(makeGroup("Pumpen"), "P1");
    restart();
    ASSERT_EQ(label(), "");
    trigger("bCopy");
    EXPECT_EQ(window().handOverValue(), "");
    EXPECT_TRUE(boxes_.take().isEmpty());
}

TEST_F(HandOver, AfterAFailureTheWindowStays) {
    startTwoDeep(StartMode::Standalone);
    const auto held = holdLocked(store::pathOf(library(), group_.file));
    trigger("bCopyEnd");
    const QString text = boxes_.takeText();
    EXPECT_TRUE(text.startsWith("Gruppe: Pumpen / Kreisel\n")) << text.toStdString();
    EXPECT_TRUE(text.contains("anderen Programm")) << text.toStdString();
    EXPECT_TRUE(window().isVisible());
    EXPECT_TRUE(selected_->isEmpty());
}

} // namespace
