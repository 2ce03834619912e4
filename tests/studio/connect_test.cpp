// The automation object in a program without a bus and without foreign windows.
#include "app/long_operation.h"
#include "app/message_box.h"
#include "automation/connect.h"
#include "browser/frm_main.h"
#include "platform/own_home.h"
#include "platform/temporary_folder.h"

#include <QApplication>
#include <QDialog>
#include <QSignalSpy>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

constexpr int kPatienceMilliseconds = 60'000;

bool until(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, kPatienceMilliseconds);
}

browser::frmMain* shownWindow() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* window = qobject_cast<browser::frmMain*>(widget); window && window->isVisible()) {
            return window;
        }
    }
    return nullptr;
}

class ConnectTest : public testing::Test {
  protected:
    ~ConnectTest() override {
        app::setMsgBoxHandler({});
        platform::wipeTemporaryFolder(platform::CopiedPicture::Remove);
    }

    browser::frmMain* show(std::uint32_t clientWindow = 0) {
        connect_.ShowGraficsLib(clientWindow);
        EXPECT_TRUE(until([] { return shownWindow() != nullptr && shownWindow()->isSettled(); }));
        return shownWindow();
    }

    OwnHome home_;
    automation::Connect connect_;
};

// An operation that stops once it is asked to, started from the event loop as commands are; `then`
// is called while it runs.
void duringOperation(QWidget* owner, const std::function<void()>& then, bool& hasEnded) {
    QTimer::singleShot(0, owner, [&then] { then(); });
    app::runLong({.what = QStringLiteral("Working"),
                  .stopping = app::LongOperation::Stopping::Offered,
                  .patience = std::chrono::milliseconds(1)},
                 owner, [&](store::Progress& progress) {
                     while (!progress.isStopWanted()) {
                         QThread::yieldCurrentThread();
                     }
                 });
    hasEnded = true;
}

TEST_F(ConnectTest, TheEndWaitsForARunningOperation) {
    browser::frmMain* window = show();
    ASSERT_NE(window, nullptr);
    bool hasEnded = false;
    bool hadEndedBefore = false;
    QObject::connect(&connect_, &automation::Connect::terminated, &connect_,
                     [&] { hadEndedBefore = hasEnded; });
    QSignalSpy terminated(&connect_, &automation::Connect::terminated);
    duringOperation(
        window, [this] { connect_.Terminate(); }, hasEnded);
    ASSERT_TRUE(until([&] { return !terminated.isEmpty(); }));
    EXPECT_TRUE(hadEndedBefore);
    EXPECT_FALSE(window->isVisible());
    EXPECT_TRUE(home_.read("settings/user.conf").contains("Drive"));
}

TEST_F(ConnectTest, ALostClientEndsOperationsAndDialogsBeforeTheWindow) {
    browser::frmMain* window = show();
    ASSERT_NE(window, nullptr);
    QPointer<browser::frmMain> watched = window;
    bool hasEnded = false;
    duringOperation(
        window, [this] { connect_.loseClient(); }, hasEnded);
    // The command goes on after its operation: it asks, and opens a dialog.
    const int answer = app::msgBox("Go on?", app::Buttons::YesNo, "TXSGraphicsLib", window);
    EXPECT_EQ(answer, app::kAnswerNo);
    {
        QDialog dialog(window);
        EXPECT_EQ(dialog.exec(), QDialog::Rejected);
    }
    EXPECT_FALSE(watched.isNull());
    ASSERT_TRUE(until([&] { return watched.isNull(); }));
    EXPECT_NE(show(), nullptr);
}

TEST_F(ConnectTest, ACallDuringTheUnloadingIsServedAfterwards) {
    QPointer<browser::frmMain> first = show();
    ASSERT_FALSE(first.isNull());
    first->close();
    connect_.ShowGraficsLib(0);
    ASSERT_TRUE(until([&] { return first.isNull() && shownWindow() != nullptr; }));
}

TEST_F(ConnectTest, AddsToTheStyleOfItsWindowAndRemovesNothing) {
    show();
    const auto first = connect_.windowStyle();
    EXPECT_EQ(first.after, first.before | 0x80880000U);
    EXPECT_NE(first.before & 0x00C00000U, 0U) << "an ordinary window has a caption";
    show();
    EXPECT_EQ(connect_.windowStyle().before, first.after);
    EXPECT_EQ(connect_.windowStyle().after, first.after);
    EXPECT_EQ(connect_.clientThreadId(), 0U) << "no window, no owner";
}

TEST_F(ConnectTest, LeavingHidesTheWindowUntilTheNextCall) {
    browser::frmMain* window = show();
    ASSERT_NE(window, nullptr);
    window->Exit();
    EXPECT_EQ(shownWindow(), nullptr);
    EXPECT_EQ(show(), window);
}

// The display of this test knows no foreign windows.
TEST_F(ConnectTest, WithoutForeignWindowsTheLibraryIsAnOrdinaryWindow) {
    testing::internal::CaptureStderr();
    EXPECT_NE(show(4711), nullptr);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("ordinary window"), std::string::npos);
}

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
