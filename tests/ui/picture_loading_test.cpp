// Thumbnails and preview are read and decoded beside the window: what is on the screen meanwhile,
// and what becomes of results that come too late.
#include "app/patience.h"
#include "app/stepped_executor.h"
#include "browser/large_preview.h"
#include "browser/thumbnail_loader.h"
#include "platform/held_file.h"
#include "store/picture_operations.h"
#include "ui/main_window_fixture.h"

#include <QAction>
#include <QBuffer>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QScrollBar>
#include <QTest>

#include <algorithm>
#include <atomic>
#include <map>
#include <optional>
#include <stdexcept>
#include <thread>

namespace {

std::vector<std::byte> bmpOf(const QImage& image) {
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "BMP");
    const auto bytes = std::as_bytes(std::span(data.constData(), std::size_t(data.size())));
    return {bytes.begin(), bytes.end()};
}

std::vector<std::byte> plainBmp(QSize size, const QColor& colour) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    return bmpOf(image);
}

class PictureLoading : public MainWindowTest {
  protected:
    // Groups with pictures of one colour each, shown by a window that has settled; from then on
    // the workers wait for the test.
    void startWith(const std::map<QString, QStringList>& groups) {
        int hue = 0;
        for (const auto& [group, pictures] : groups) {
            groups_[group] = makeGroup(group);
            for (const QString& name : pictures) {
                addPicture(groups_[group], name, QColor::fromHsv(hue += 15, 255, 255));
            }
        }
        start();
        clickNode(groups.begin()->first);
        stepped_.emplace(workers_);
    }

    ~PictureLoading() override {
        workers_.stepAll();
        stepped_.reset();
    }

    void click(const QString& group) {
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {},
                          tree()->visualItemRect(node(group)).center());
        window().awaitShown();
    }

    QColor previewCentre() {
        auto* preview = find<QWidget>("imgVorschau");
        return preview->grab().toImage().pixelColor(preview->rect().center());
    }

    QColor centreOf(const QString& picture) {
        QWidget* cell = thumbnail(picture);
        return cell->grab().toImage().pixelColor(cell->rect().center());
    }

    std::map<QString, store::GroupAddress> groups_;
    SteppedExecutor workers_;
    std::optional<app::WorkersReplacement> stepped_;
};

TEST_F(PictureLoading, TheWindowGoesOnWhileItsPicturesAreRead) {
    startWith({{"A", {"A1"}}, {"B", {"B1", "B2"}}});
    click("B");
    EXPECT_EQ(label(), "B1") << "the name needs no decoding";
    EXPECT_TRUE(thumbnails().isEmpty()) << "those of the group before are gone";
    EXPECT_FALSE(window().isSettled());
    QTest::keyClick(find<QWidget>("shpVorschau"), Qt::Key_End);
    EXPECT_EQ(label(), "B1") << "what is not there cannot be chosen yet";
    workers_.stepAll();
    EXPECT_EQ(thumbnails(), (QStringList{"B1", "B2"}));
    EXPECT_EQ(label(), "B2") << "but is as soon as it comes";
    EXPECT_TRUE(window().isSettled());
}

TEST_F(PictureLoading, WhatIsNoLongerWantedIsNotShown) {
    startWith({{"A", {"A1"}}, {"B", {"B1", "B2"}}, {"C", {}}});
    store::deletePicture(library(), groups_["A"], {u"A1"});
    addPicture(groups_["A"], "A1", Qt::blue);
    click("B");
    workers_.step(); // the preview
    workers_.step(); // reads the page
    ASSERT_EQ(workers_.waiting(), 2U) << "thumbnails to be decoded";
    click("A");
    workers_.stepAll();
    EXPECT_EQ(thumbnails(), QStringList{"A1"});
    EXPECT_EQ(centreOf("A1"), QColor(Qt::blue));
    EXPECT_EQ(previewCentre(), QColor(Qt::blue));

    click("B");
    click("C");
    workers_.stepAll();
    EXPECT_TRUE(thumbnails().isEmpty());
    EXPECT_EQ(previewCentre(), find<QWidget>("imgVorschau")->palette().color(QPalette::Base));
    EXPECT_TRUE(window().isSettled());
}

// Another program may hold it, or the disk take its time.
TEST_F(PictureLoading, TheWindowDoesNotWaitForAGroupFile) {
    startWith({{"A", {"A1", "A2"}}, {"B", {"B1", "B2"}}});
    stepped_.reset();
    auto held = holdLocked(store::pathOf(library(), groups_["B"].file));
    const auto clickNow = [this](const QString& group) {
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {},
                          tree()->visualItemRect(node(group)).center());
    };
    auto* shown = find<QLabel>("lblAktuell");
    for (const bool asList : {false, true}) {
        SCOPED_TRACE(asList);
        clickNow("B");
        EXPECT_FALSE(window().isSettled());
        EXPECT_EQ(shown->text(), "") << "neither of this group nor of the one before";
        EXPECT_TRUE(window().shownPicture().isUnchosen());
        clickNow("A");
        settle();
        EXPECT_EQ(label(), "A1");
        trigger("Men_Extras_0");
    }
    held.reset();
    trigger("Men_Extras_0");
    clickNow("B");
    settle();
    EXPECT_EQ(rows(), (QStringList{"B1", "B2"}));
    EXPECT_EQ(label(), "B1");
}

// What a key or click acts on is what the user was going to see.
TEST_F(PictureLoading, ACommandWaitsForItsPictures) {
    startWith({{"A", {"A1"}}, {"B", {"A1", "B2"}}});
    stepped_.reset();
    QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {},
                      tree()->visualItemRect(node("B")).center());
    find<QAction>("Men_Extras_0")->trigger();
    find<QAction>("Men_Bearbeiten_15")->trigger(); // selects all
    EXPECT_EQ(window().selectedPictures().size(), 2U);
    settle();
    EXPECT_EQ(rows(), (QStringList{"A1", "B2"}));
}

TEST_F(PictureLoading, APictureThatIsRenamedWhileItIsReadIsShown) {
    startWith({{"A", {"A1", "A2"}}});
    const QColor expected = centreOf("A2");
    trigger("Men_Extras_0");
    auto* list = find<QTreeWidget>("lvwInfo");
    list->setFocus();
    list->setCurrentItem(list->topLevelItem(1));
    EXPECT_EQ(label(), "A2");
    list->editItem(list->topLevelItem(1), 0);
    auto* editor = list->viewport()->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->setText("Neu");
    QTest::keyClick(editor, Qt::Key_Return);
    ASSERT_TRUE(until([this] { return label() == "Neu"; })); // the list ends the editing later
    workers_.stepAll();
    EXPECT_EQ(previewCentre(), expected);
    EXPECT_TRUE(window().isSettled());
}

TEST_F(PictureLoading, ResultsThatComeAfterTheWindowsEndAreLost) {
    startWith({{"A", {"A1", "A2"}}, {"B", {"B1", "B2"}}});
    click("B");
    workers_.step();
    window().close();
    EXPECT_TRUE(window().isSettled());
    workers_.stepAll();
    EXPECT_TRUE(thumbnails().isEmpty());
}

// Whoever waits for the workers' turn at a file does not tell that the file is locked.
TEST_F(PictureLoading, ThreadsOfThisProgramNeverLockEachOtherOut) {
    startWith({{"A", {"A1"}}});
    store::Library impatient = library();
    impatient.lockWait = std::chrono::milliseconds(0);
    constexpr int kRounds = 60;
    std::atomic<int> failures = 0;
    const auto often = [&failures](const std::function<void()>& action) {
        return std::thread([=, &failures] {
            for (int i = 0; i < kRounds; ++i) {
                try {
                    action();
                } catch (const std::exception&) {
                    ++failures;
                }
            }
        });
    };
    std::thread reading = often([&] { store::readPicture(impatient, groups_["A"], {u"A1"}); });
    std::thread listing = often([&] { store::listPictureNames(impatient, groups_["A"]); });
    std::thread testing = often([&] {
        const auto state =
            store::readGroupFile(impatient, groups_["A"].file, store::LockBudget({})).state;
        if (state != store::GroupFileState::Sound) {
            throw std::runtime_error("not sound");
        }
    });
    reading.join();
    listing.join();
    testing.join();
    EXPECT_EQ(failures, 0);
}

// Its own executor: how many tasks a page takes tells what was read and decoded.
class ThumbnailLoading : public MainWindowTest {
  protected:
    void setPicture(const QString& name, const QColor& colour) { addPicture(group_, name, colour); }

    static store::FileStamp stampOf(std::uint32_t transaction) {
        store::FileStamp stamp;
        stamp.identity.number = 1;
        stamp.transaction = transaction;
        return stamp;
    }

    // Loads the page and returns how many tasks that took.
    int load(std::optional<store::FileStamp> stamp, QSizeF area = {50, 50}) {
        shown_.clear();
        loader_.start(library(), {group_, names_, stamp, area, 1});
        return workers_.stepAll();
    }

    QColor colourOf(int position) {
        return shown_[position].isNull() ? QColor() : shown_[position].pixelColor(5, 5);
    }

    SteppedExecutor workers_;
    app::WorkersReplacement stepped_{workers_};
    store::GroupAddress group_ = makeGroup("Pumpen");
    std::vector<store::PictureName> names_{{u"P1"}, {u"P2"}};
    browser::ThumbnailLoader loader_;
    std::map<int, QImage> shown_;
    QMetaObject::Connection connection_ = QObject::connect(
        &loader_, &browser::ThumbnailLoader::loaded,
        [this](int position, const QString&, const QImage& image) { shown_[position] = image; });
};

TEST_F(ThumbnailLoading, NothingIsDecodedTwiceNorShownStale) {
    setPicture("P1", Qt::red);
    setPicture("P2", Qt::green);
    EXPECT_EQ(load(stampOf(1)), 3) << "one reads, two decode";
    EXPECT_EQ(colourOf(0), QColor(Qt::red));
    EXPECT_EQ(load(stampOf(1)), 0) << "the file is as it was";
    EXPECT_EQ(colourOf(1), QColor(Qt::green));
    EXPECT_EQ(load(stampOf(2)), 1) << "something has changed, but no picture's bytes";
    EXPECT_EQ(colourOf(0), QColor(Qt::red));
    EXPECT_EQ(load(std::nullopt), 1) << "the disk does not tell";
    EXPECT_EQ(load(stampOf(2), {25, 25}), 3) << "another size";

    setPicture("P1", Qt::blue); // of the same size in bytes
    EXPECT_EQ(load(stampOf(3)), 2) << "one is new";
    EXPECT_EQ(colourOf(0), QColor(Qt::blue));
    EXPECT_EQ(colourOf(1), QColor(Qt::green));
    names_[1] = {u"P3"}; // renamed
    store::renamePicture(library(), group_, {u"P2"}, {u"P3"});
    EXPECT_EQ(load(stampOf(4)), 1);
    EXPECT_EQ(colourOf(1), QColor(Qt::green));
    EXPECT_EQ(load(stampOf(4)), 0);
}

TEST_F(ThumbnailLoading, WhatCannotBeDecodedIsTriedOnce) {
    addUndecodable(group_, "P1");
    setPicture("P2", Qt::green);
    EXPECT_EQ(load(stampOf(1)), 3);
    EXPECT_TRUE(shown_.contains(0));
    EXPECT_TRUE(shown_[0].isNull());
    EXPECT_EQ(load(stampOf(1)), 0);
    EXPECT_TRUE(shown_.contains(0));
}

TEST_F(ThumbnailLoading, PicturesOfManyMegabytesAreReadOneByOne) {
    home_.write("source.bmp", QByteArray("BM") + QByteArray(5 << 20, 'x'));
    for (const char16_t* name : {u"P1", u"P2"}) {
        store::addPicture(library(), group_, {name}, platform::toFilePath(home_.at("source.bmp")));
    }
    loader_.start(library(), {group_, names_, {}, {50, 50}, 1});
    ASSERT_TRUE(workers_.step());
    EXPECT_EQ(workers_.waiting(), 2U) << "the file is let go between the two";
    workers_.stepAll();
    EXPECT_EQ(shown_.size(), 2U);
}

// Sizes in bytes; the memory for what is read and not decoded holds 100,000.
TEST_F(ThumbnailLoading, WhatWaitsToBeDecodedKeepsWithinItsMemory) {
    names_.clear();
    for (const int size : {40'000, 40'000, 40'000, 200'000, 10'000}) {
        const QByteArray bytes =
            "BM" + QByteArray(size - 2, static_cast<char>('a' + names_.size()));
        home_.write("source.bmp", bytes);
        names_.push_back({u"P" + std::u16string(1, char16_t(u'1' + names_.size()))});
        store::addPicture(library(), group_, names_.back(),
                          platform::toFilePath(home_.at("source.bmp")));
    }
    browser::ThumbnailLoader loader(100'000);
    QList<int> shown;
    QObject::connect(&loader, &browser::ThumbnailLoader::loaded,
                     [&](int position, const QString&, const QImage&) { shown += position; });
    loader.start(library(), {group_, names_, {}, {50, 50}, 1});
    ASSERT_TRUE(workers_.step());
    ASSERT_EQ(workers_.waiting(), 3U) << "two to be decoded, and the reader";
    workers_.stepLatest();
    EXPECT_EQ(workers_.waiting(), 2U) << "there is no room for the third";
    workers_.step();
    workers_.stepLatest();
    EXPECT_EQ(workers_.waiting(), 3U) << "now there is, and the reader goes on";
    workers_.stepLatest();
    EXPECT_EQ(workers_.waiting(), 2U) << "the fourth has to be alone";
    workers_.stepAll();
    EXPECT_EQ(shown, (QList<int>{0, 1, 2, 3, 4}));
    EXPECT_FALSE(loader.isBusy());
}

TEST_F(ThumbnailLoading, APictureThatHasVanishedLeavesTheOthers) {
    setPicture("P2", Qt::green);
    load(std::nullopt);
    EXPECT_TRUE(shown_[0].isNull());
    EXPECT_EQ(colourOf(1), QColor(Qt::green));
    store::removeGroupFile(library(), group_.file);
    load(std::nullopt);
    EXPECT_TRUE(shown_.empty());
    EXPECT_FALSE(loader_.isBusy());
}

TEST(ThumbnailCache, ForgetsWhatWasNotUsedForLongest) {
    browser::ThumbnailCache cache(50'000);
    const QImage image(100, 50, QImage::Format_RGB32); // 20,000 bytes
    const QSize area(100, 100);
    cache.insert(browser::Fingerprint{1, 1}, area, image);
    cache.insert(browser::Fingerprint{2, 1}, area, image);
    EXPECT_TRUE(cache.find(browser::Fingerprint{1, 1}, area));
    cache.insert(browser::Fingerprint{3, 1}, area, image);
    EXPECT_TRUE(cache.find(browser::Fingerprint{1, 1}, area));
    EXPECT_FALSE(cache.find(browser::Fingerprint{2, 1}, area));
    EXPECT_FALSE(cache.find(browser::Fingerprint{1, 2}, area))
        << "the size belongs to the fingerprint";
}

class LargePreviewTest : public testing::Test {
  protected:
    LargePreviewTest() { preview_.resize(200, 200); }

    void load(const QColor& colour, QSize size = {300, 300}) {
        preview_.load([=] { return plainBmp(size, colour); });
    }

    QColor colourAt(int x, int y) { return preview_.grab().toImage().pixelColor(x, y); }
    QColor centre() { return colourAt(preview_.width() / 2, preview_.height() / 2); }
    QColor empty() const { return preview_.palette().color(QPalette::Base); }

    SteppedExecutor workers_;
    app::WorkersReplacement stepped_{workers_};
    browser::LargePreview preview_;
};

// With the next one decoded beside it, a group of huge pictures would take twice their memory.
TEST_F(LargePreviewTest, OfAHugePictureOnlyWhatAScreenShowsIsKept) {
    QImage stripes(4000, 2000, QImage::Format_RGB32); // of three pixels
    QPainter painter(&stripes);
    for (int x = 0; x < stripes.width(); ++x) {
        painter.fillRect(x, 0, 1, stripes.height(), x % 6 < 3 ? Qt::black : Qt::white);
    }
    painter.end();
    preview_.load([=] { return bmpOf(stripes); });
    workers_.stepAll();
    EXPECT_EQ(colourAt(100, 40), empty());
    preview_.resize(1600, 1600);
    (void)centre(); // painting finds that it does not fit
    workers_.stepAll();
    int darkest = 255;
    int lightest = 0;
    const QImage shown = preview_.grab().toImage();
    for (int x = 700; x < 900; ++x) {
        darkest = std::min(darkest, qGray(shown.pixel(x, 800)));
        lightest = std::max(lightest, qGray(shown.pixel(x, 800)));
    }
    EXPECT_GT(darkest, 60) << "the stripes are not there any more";
    EXPECT_LT(lightest, 200);
    EXPECT_NE(colourAt(50, 800), empty()) << "but the picture is as large as the frame";
}

TEST_F(LargePreviewTest, ShowsTheLatestRequestOnly) {
    load(Qt::red);
    workers_.stepAll();
    load(Qt::green);
    EXPECT_EQ(centre(), QColor(Qt::red)) << "for a moment";
    load(Qt::blue);
    workers_.stepAll();
    EXPECT_EQ(centre(), QColor(Qt::blue));
    load(Qt::red);
    preview_.showNothing();
    workers_.stepAll();
    EXPECT_EQ(centre(), empty());
    EXPECT_FALSE(preview_.isBusy());
}

TEST_F(LargePreviewTest, APictureThatCannotBeReadIsTornAndNotTheOneBefore) {
    load(Qt::red);
    workers_.stepAll();
    preview_.load([]() -> std::vector<std::byte> { throw std::runtime_error("gone"); });
    workers_.stepAll();
    const QImage torn = preview_.grab().toImage();
    EXPECT_NE(centre(), QColor(Qt::red));
    preview_.showNothing();
    EXPECT_NE(torn, preview_.grab().toImage());
    preview_.load([] { return std::vector<std::byte>(40); });
    workers_.stepAll();
    EXPECT_EQ(torn, preview_.grab().toImage());
}

// A slow picture's name stands below the preview: the picture before must not be taken for it.
TEST_F(LargePreviewTest, AfterAMomentThePictureBeforeGoes) {
    load(Qt::red);
    workers_.stepAll();
    load(Qt::green);
    ASSERT_TRUE(until([this] { return centre() == empty(); }));
    workers_.stepAll();
    EXPECT_EQ(centre(), QColor(Qt::green));
}

} // namespace
