#include "app/patience.h"
#include "app/texts.h"
#include "editing/frm_optionen_wmf.h"
#include "imaging/picture_bytes.h"
#include "picture/picture.h"
#include "platform/held_file.h"
#include "platform/native_disk.h"
#include "store/picture_operations.h"
#include "ui/main_window_fixture.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QPainter>
#include <QScreen>
#include <QTest>
#include <QTreeWidget>

namespace {

using app::TwipRect;
using imaging::testing::Bytes;
using imaging::testing::put16;
using imaging::testing::put32;

// A placeable metafile of that size in twips with one line through it.
Bytes wmfFile(unsigned width, unsigned height) {
    Bytes bytes;
    put32(bytes, 0x9AC6CDD7);
    for (const unsigned word : {0U, 0U, 0U, width, height, 1440U, 0U, 0U, 0U}) {
        put16(bytes, word);
    }
    for (const unsigned word : {1U, 9U, 0x0300U, 22U, 0U, 0U, 5U, 0U, 0U}) { // header, 9 words
        put16(bytes, word);
    }
    for (const unsigned word : {5U, 0U, 0x020CU, height, width}) { // window extent
        put16(bytes, word);
    }
    for (const unsigned word : {5U, 0U, 0x0213U, height, width}) { // line to
        put16(bytes, word);
    }
    for (const unsigned word : {3U, 0U, 0U}) {
        put16(bytes, word);
    }
    return bytes;
}

// An enhanced metafile of that frame in hundredths of a millimetre without content.
Bytes emfFile(std::uint32_t width, std::uint32_t height) {
    Bytes bytes;
    for (const std::uint32_t word :
         {1U, 88U, 0U, 0U, 100U,  100U, 0U,   0U,   width, height, 0x464D4520U, 0x10000U, 108U, 2U,
          1U, 0U,  0U, 0U, 1024U, 768U, 320U, 240U, 14U,   20U,    0U,          16U,      20U}) {
        put32(bytes, word);
    }
    return bytes;
}

class FrmOptionenWmf : public MainWindowTest {
  protected:
    // Stores bytes under the type code WMF, with a record of that size in pixels.
    void addVector(const QString& name, const Bytes& bytes, store::TwipSize recorded = {150, 300}) {
        home_.write("source.wmf", {reinterpret_cast<const char*>(bytes.data()),
                                   static_cast<qsizetype>(bytes.size())});
        store::Library measuring = library();
        measuring.measure = [recorded](std::span<const std::byte>) { return recorded; };
        store::addPicture(measuring, group_, {name.toStdU16String()},
                          platform::toFilePath(home_.at("source.wmf")));
    }

    // Loads a picture with that record, in pixels, into a window that is not shown.
    TwipRect vectorRectOf(double height, double width) {
        addVector("P", wmfFile(300, 150), {height * 15, width * 15});
        picture_.name = {u"P"};
        form_.load(library(), picture_);
        EXPECT_EQ(vector()->geometry(), app::toPixels(form_.vectorRect()));
        return form_.vectorRect();
    }

    QWidget* vector() { return form_.findChild<QWidget*>("Vector"); }

    void startWithVectors() {
        addVector("Breit", wmfFile(300, 150));
        addVector("Hoch", wmfFile(150, 300));
        start();
        clickNode("Pumpen");
    }

    void choose(const QString& name) {
        QTest::mouseClick(thumbnail(name), Qt::LeftButton);
        EXPECT_EQ(label(), name);
    }

    bool isEditOffered() { return find<QAction>("Men_Bearbeiten_2")->isEnabled(); }

    // The title of the vector window that `open` opens.
    QString titleOf(const std::function<void()>& open) {
        QString title;
        inDialog(open, [&](QDialog& dialog) {
            EXPECT_EQ(dialog.objectName(), "frmOptionenWMF");
            title = dialog.windowTitle();
        });
        return title;
    }

    // The text of the one box that `act` brings, while no window opens.
    QString refusalOf(const std::function<void()>& act) {
        act();
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
        return boxes_.takeText();
    }

    store::GroupAddress group_ = makeGroup("Pumpen");
    editing::PictureInGroup picture_{group_, "Pumpen", {}};
    editing::frmOptionenWMF form_{nullptr};
};

TEST_F(FrmOptionenWmf, FitsThePictureIntoTheSquare) {
    EXPECT_EQ(vectorRectOf(100, 200), (TwipRect{30, 1031.25, 4005, 2002.5}));
    EXPECT_EQ(vectorRectOf(200, 50), (TwipRect{1531.875, 30, 1001.25, 4005}));
    const TwipRect square{30, 30, 4005, 4005};
    EXPECT_EQ(vectorRectOf(31.5, 31.5), square);
    EXPECT_EQ(vectorRectOf(0, 0), square);
    EXPECT_EQ(vectorRectOf(0, 50), square);
    EXPECT_EQ(vectorRectOf(50, 0), square);
}

TEST_F(FrmOptionenWmf, OpensAtItsFirstSizeInTheMiddleOfTheScreen) {
    addVector("P", emfFile(1000, 1000), {300, 300}); // an enhanced one under the other's name
    picture_.name = {u"P"};
    form_.resize(500, 400);
    form_.load(library(), picture_);
    form_.show();
    EXPECT_EQ(vector()->geometry(), QRect(2, 2, 267, 267));
    const QSize screen = form_.screen()->size();
    EXPECT_EQ(form_.pos(), QPoint((screen.width() - 271) / 2, (screen.height() - 271) / 2));
    EXPECT_TRUE(form_.windowTitle().startsWith("P "));
    QTest::keyClick(&form_, Qt::Key_Escape);
    EXPECT_FALSE(form_.isVisible());
}

// Its pixels are those of the picture painted at that size, not a stretched image of another one.
TEST_F(FrmOptionenWmf, GrowsWithTheWindowAndStaysSharp) {
    const Bytes bytes = wmfFile(300, 150);
    addVector("P", bytes);
    picture_.name = {u"P"};
    form_.load(library(), picture_);
    form_.show();
    const auto shown = [&] {
        return form_.grab(vector()->geometry()).toImage().convertToFormat(QImage::Format_RGB32);
    };
    const auto expected = [&] {
        QImage picture(vector()->size(), QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        picture::decode(bytes).paint(painter, picture.rect());
        painter.end();
        QImage sheet(picture.size(), QImage::Format_RGB32);
        sheet.fill(form_.grab().toImage().pixelColor(3, vector()->y() - 1)); // the paper
        QPainter(&sheet).drawImage(0, 0, picture);
        return sheet;
    };
    EXPECT_TRUE(until([&] { return shown() == expected(); }));
    form_.resize(404, 504); // a square of 400 pixels
    EXPECT_EQ(form_.vectorRect(), (TwipRect{30, 2280, 6000, 3000}));
    EXPECT_EQ(vector()->geometry(), QRect(2, 152, 400, 200));
    EXPECT_TRUE(until([&] { return shown() == expected(); }));
}

TEST_F(FrmOptionenWmf, KeepsWhatItShowsWhenAnotherPictureCannotBeRead) {
    const TwipRect before = vectorRectOf(100, 200);
    addVector("Bad", Bytes(40), {300, 150});
    picture_.name = {u"Bad"};
    EXPECT_THROW(form_.load(library(), picture_), picture::DecodeError);
    EXPECT_EQ(form_.vectorRect(), before);
    EXPECT_TRUE(form_.windowTitle().startsWith("P "));
}

TEST_F(FrmOptionenWmf, TheEditMenuOpensItForAChosenThumbnail) {
    startWithVectors();
    EXPECT_EQ(label(), "Hoch");
    EXPECT_FALSE(isEditOffered()) << "a chosen group never allows it";
    choose("Breit");
    ASSERT_TRUE(isEditOffered());
    EXPECT_EQ(titleOf([&] { trigger("Men_Bearbeiten_2"); }), "Breit – Vektorbild");
    choose("Hoch");
    app::setLanguage(app::kEnglishLocale);
    EXPECT_EQ(titleOf([&] { trigger("Men_Bearbeiten_2"); }), "Hoch – Vector picture");
    EXPECT_EQ(window().findChildren<editing::frmOptionenWMF*>().size(), 1);
    clickNode("Pumpen");
    EXPECT_FALSE(isEditOffered());
    EXPECT_TRUE(boxes_.take().isEmpty());
}

TEST_F(FrmOptionenWmf, ADoubleClickRunsTheMenusVariant) {
    startWithVectors();
    auto* preview = find<QWidget>("imgVorschau");
    EXPECT_EQ(titleOf([&] { QTest::mouseDClick(preview, Qt::LeftButton); }), "Hoch – Vektorbild");
    QWidget* cell = thumbnail("Breit");
    QTest::mouseClick(cell, Qt::LeftButton);
    EXPECT_EQ(titleOf([&] { QTest::mouseDClick(cell, Qt::LeftButton); }), "Breit – Vektorbild");
    EXPECT_EQ(titleOf([&] { QTest::keyClick(find<QWidget>("shpVorschau"), Qt::Key_Return); }),
              "Breit – Vektorbild");
    EXPECT_EQ(refusalOf([&] { QTest::mouseDClick(preview, Qt::RightButton); }), "(0 boxes)");
}

TEST_F(FrmOptionenWmf, ThePopUpOnlyTellsAboutVectorPictures) {
    startWithVectors();
    QWidget* cell = thumbnail("Hoch");
    QTest::mousePress(cell, Qt::RightButton);
    QContextMenuEvent request(QContextMenuEvent::Mouse, cell->rect().center(),
                              cell->mapToGlobal(cell->rect().center()));
    QApplication::sendEvent(cell, &request);
    ASSERT_TRUE(find<QMenu>("Band1")->isVisible());
    EXPECT_TRUE(find<QAction>("bEdit")->isEnabled());
    find<QMenu>("Band1")->close();
    for (const int language : {app::kGermanLocale, app::kEnglishLocale}) {
        app::setLanguage(language); // the sentence is German in both
        EXPECT_EQ(refusalOf([&] { trigger("bEdit"); }),
                  "Bearbeitungsfunktionen für Vektordateien sind noch nicht verfügbar.");
    }
}

TEST_F(FrmOptionenWmf, TheListNeverOffersToEditAVectorPicture) {
    startWithVectors();
    choose("Breit");
    trigger("Men_Extras_0");
    EXPECT_FALSE(isEditOffered());
    auto* list = find<QTreeWidget>("lvwInfo");
    const QPoint row = list->visualItemRect(list->topLevelItem(1)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, row);
    EXPECT_EQ(label(), "Breit");
    EXPECT_FALSE(isEditOffered());
    EXPECT_EQ(refusalOf([&] { QTest::keyClick(list, Qt::Key_Return); }), "(0 boxes)");
}

TEST_F(FrmOptionenWmf, WithoutAPictureNothingHappens) {
    start();
    clickNode("Pumpen");
    EXPECT_EQ(label(), app::text(7));
    EXPECT_FALSE(isEditOffered());
    auto* preview = find<QWidget>("imgVorschau");
    EXPECT_EQ(refusalOf([&] { QTest::mouseDClick(preview, Qt::LeftButton); }), "(0 boxes)");
}

TEST_F(FrmOptionenWmf, APictureThatCannotBeReadIsToldByItsNames) {
    addVector("Kaputt", Bytes(40));
    startWithVectors();
    const auto edit = [&] { trigger("Men_Bearbeiten_2"); };
    const auto names = [](const QString& text, std::initializer_list<const char*> wanted) {
        for (const char* name : wanted) {
            EXPECT_TRUE(text.contains(name)) << name << " in: " << text.toStdString();
        }
    };
    choose("Kaputt");
    names(refusalOf(edit), {"\"Kaputt\"", "\"Pumpen\"", "kein lesbares Bild"});

    choose("Hoch");
    auto file = holdLocked(library().folder / "Pumpen.stg");
    names(refusalOf(edit), {"\"Hoch\"", "\"Pumpen\"", "Pumpen.stg", "anderen Programm"});
    file.reset();
    EXPECT_EQ(titleOf(edit), "Hoch – Vektorbild") << "the lock is gone";

    store::deletePicture(library(), group_, {u"Hoch"});
    names(refusalOf(edit), {"\"Hoch\"", "\"Pumpen\"", "Nicht gefunden"});
}

} // namespace
