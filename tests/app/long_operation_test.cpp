#include "app/long_operation.h"
#include "app/texts.h"
#include "compound/error.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>
#include <semaphore>
#include <stdexcept>
#include <thread>

namespace {

using app::LongOperation;
using Counting = app::LongOperation::Counting;
using Stopping = app::LongOperation::Stopping;

constexpr std::chrono::milliseconds kAtOnce{0};
constexpr std::chrono::hours kNever{1};

class LongOperationTest : public testing::Test {
  protected:
    ~LongOperationTest() override { app::setLanguage(app::kGermanLocale); }

    // Calls `steps` with the window about the running operation once it is there, again and again
    // until they return true.
    void inWindow(const std::function<bool(QDialog&)>& steps) {
        QObject::connect(&looking_, &QTimer::timeout, [this, steps] {
            auto* window = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (window != nullptr && steps(*window)) {
                looking_.stop();
            }
        });
        looking_.start(0);
    }

    template <typename Control>
    static Control& find(QDialog& window, const char* name) {
        return *window.findChild<Control*>(name);
    }

    QTimer looking_;
};

TEST_F(LongOperationTest, RunsElsewhereAndGivesItsResult) {
    const auto here = std::this_thread::get_id();
    bool wasAlive = false;
    QTimer::singleShot(0, [&] { wasAlive = app::isLongOperationRunning(); });
    std::binary_semaphore goOn(0);
    QTimer::singleShot(0, [&] { goOn.release(); });
    const int result = app::resultOfLong<int>(
        {"Waiting", Stopping::NotOffered, Counting::Bytes, kNever}, nullptr, [&](auto&) {
            goOn.acquire();
            return std::this_thread::get_id() == here ? 1 : 2;
        });
    EXPECT_EQ(result, 2);
    EXPECT_TRUE(wasAlive) << "timers go on meanwhile";
    EXPECT_FALSE(app::isLongOperationRunning());
}

TEST_F(LongOperationTest, WhatTheWorkThrowsComesOut) {
    EXPECT_THROW(app::runLong({"Failing"}, nullptr,
                              [](auto&) {
                                  throw compound::Error(compound::ErrorCode::NoSpace, "/a", "full");
                              }),
                 compound::Error);
    EXPECT_FALSE(app::isLongOperationRunning());
}

TEST_F(LongOperationTest, AfterAMomentAWindowShowsHowFarItIs) {
    app::setLanguage(app::kEnglishLocale);
    std::binary_semaphore goOn(0);
    QStringList amounts;
    inWindow([&](QDialog& window) {
        EXPECT_EQ(find<QLabel>(window, "lblVorgang").text(), "Copying <b>");
        EXPECT_EQ(window.findChild<QPushButton*>("cmdAbbruch"), nullptr);
        auto& bar = find<QProgressBar>(window, "prgFortschritt");
        EXPECT_GT(bar.width(), 300) << "whatever the text is";
        const QString amount = find<QLabel>(window, "lblMenge").text();
        window.reject(); // does nothing: stopping is not offered
        EXPECT_TRUE(window.isVisible());
        if (amounts.isEmpty() || amounts.last() != amount) {
            amounts.append(amount);
            if (amount == "750 of 1000 MB") {
                EXPECT_EQ(bar.value(), bar.maximum() * 3 / 4);
            }
            if (!amount.isEmpty()) {
                goOn.release();
            }
        }
        return amount == "Finishing";
    });
    app::runLong({"Copying <b>", Stopping::NotOffered, Counting::Bytes, kAtOnce}, nullptr,
                 [&](store::Progress& progress) {
                     progress.report(750'000'000, 1'000'000'000);
                     goOn.acquire();
                     progress.report(1'000'000'000, 1'000'000'000);
                     goOn.acquire();
                     EXPECT_FALSE(progress.isStopWanted());
                 });
    EXPECT_EQ(amounts.mid(amounts.indexOf("750 of 1000 MB")),
              (QStringList{"750 of 1000 MB", "Finishing"}));
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(LongOperationTest, StoppingIsAskedForByButtonEscapeAndCloseBox) {
    const QList<std::function<void(QDialog&)>> ways{
        [](QDialog& window) {
            QTest::mouseClick(&find<QPushButton>(window, "cmdAbbruch"), Qt::LeftButton);
        },
        [](QDialog& window) { QTest::keyClick(&window, Qt::Key_Escape); },
        [](QDialog& window) { window.close(); }};
    for (const auto& stop : ways) {
        inWindow([&](QDialog& window) {
            stop(window);
            EXPECT_TRUE(window.isVisible()) << "until it has stopped";
            EXPECT_FALSE(find<QPushButton>(window, "cmdAbbruch").isEnabled());
            return true;
        });
        app::runLong({"Copying", Stopping::Offered, Counting::Bytes, kAtOnce}, nullptr,
                     [](store::Progress& progress) {
                         while (!progress.isStopWanted()) {
                             std::this_thread::yield();
                         }
                     });
    }
}

TEST_F(LongOperationTest, WhatCannotBeStoppedAnyMoreDoesNotOfferIt) {
    std::binary_semaphore goOn(0);
    inWindow([&](QDialog& window) {
        if (find<QPushButton>(window, "cmdAbbruch").isEnabled()) {
            return false;
        }
        window.reject();
        goOn.release();
        return true;
    });
    app::runLong({"Copying", Stopping::Offered, Counting::Bytes, kAtOnce}, nullptr,
                 [&](store::Progress& progress) {
                     progress.report(10, 10);
                     goOn.acquire();
                     EXPECT_FALSE(progress.isStopWanted());
                 });
}

// The window's end asks it to stop and comes once it has.
TEST_F(LongOperationTest, WhatWaitsForItsEndComesAfterIt) {
    QObject context;
    auto gone = std::make_unique<QObject>();
    QStringList events;
    QTimer::singleShot(0, [&] {
        app::afterLongOperation(&context, [&] { events.append("then"); });
        app::afterLongOperation(gone.get(), [&] { events.append("never"); });
        gone.reset();
    });
    app::runLong({"Copying", Stopping::Offered, Counting::Bytes, kNever}, nullptr,
                 [](store::Progress& progress) {
                     while (!progress.isStopWanted()) {
                         std::this_thread::yield();
                     }
                 });
    events.append("ended");
    QCoreApplication::processEvents();
    EXPECT_EQ(events, (QStringList{"ended", "then"}));
}

} // namespace
