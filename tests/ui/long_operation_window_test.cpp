// The main window while a long operation of the store runs.
#include "app/long_operation.h"
#include "store/picture_operations.h"
#include "ui/main_window_fixture.h"

#include <QTest>
#include <QTimer>

#include <semaphore>
#include <thread>

namespace {

using app::LongOperation;

const LongOperation kUnseen{"Waiting", LongOperation::Stopping::Offered,
                            LongOperation::Counting::Bytes, std::chrono::hours(1)};

using WindowInLongOperation = MainWindowTest;

TEST_F(WindowInLongOperation, ClosesOnceTheOperationHasStopped) {
    start();
    bool wasVisible = false;
    QTimer::singleShot(0, [&] {
        window().close();
        wasVisible = window().isVisible();
    });
    app::runLong(kUnseen, &window(), [](store::Progress& progress) {
        while (!progress.isStopWanted()) {
            std::this_thread::yield();
        }
    });
    EXPECT_TRUE(wasVisible);
    EXPECT_TRUE(window().isVisible());
    QCoreApplication::processEvents();
    EXPECT_FALSE(window().isVisible());
}

// The operation holds the file that the thumbnails would be read from.
TEST_F(WindowInLongOperation, LaysOutItsThumbnailsAfterwards) {
    const store::GroupAddress group = makeGroup("Pumpen");
    addPicture(group, "P1");
    start();
    clickNode("Pumpen");
    window().resize(window().size() + QSize(100, 100));
    auto* layout = find<QTimer>("Timer1");
    ASSERT_TRUE(layout->isActive());
    std::binary_semaphore hasFired(0);
    QObject::connect(
        layout, &QTimer::timeout, layout, [&] { hasFired.release(); }, Qt::SingleShotConnection);
    bool wentOn = false;
    app::runLong(kUnseen, &window(), [&](store::Progress&) {
        const store::PictureBatch batch(window().library(), group);
        wentOn = hasFired.try_acquire_for(std::chrono::seconds(10));
    });
    EXPECT_TRUE(wentOn) << "the window has waited for the file";
    settle();
    EXPECT_EQ(thumbnails(), QStringList{"P1"});
}

} // namespace
