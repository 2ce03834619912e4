#include "app/message_box.h"
#include "app/texts.h"
#include "compound/error.h"

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

using app::Buttons;

class MessageBoxTest : public testing::Test {
  protected:
    void TearDown() override { app::setLanguage(app::kGermanLocale); }

    // Shows a box, acts on it, and returns its answer.
    template <typename Action>
    int answer(Buttons buttons, Action action) {
        QTimer::singleShot(0, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            action(box);
        });
        return app::msgBox("<b>a</b> & b", buttons, "Title", nullptr);
    }

    int answerToKey(Buttons buttons, Qt::Key key) {
        return answer(buttons, [&](QMessageBox* box) { QTest::keyClick(box, key); });
    }
};

TEST_F(MessageBoxTest, answersEscapeAndEnter) {
    EXPECT_EQ(answerToKey(Buttons::Ok, Qt::Key_Escape), 1);
    EXPECT_EQ(answerToKey(Buttons::OkCancel, Qt::Key_Escape), 2);
    EXPECT_EQ(answerToKey(Buttons::YesNo, Qt::Key_Escape), 7);
    EXPECT_EQ(answerToKey(Buttons::RetryCancel, Qt::Key_Escape), 2);
    EXPECT_EQ(answerToKey(Buttons::OkCancel, Qt::Key_Return), 1);
    EXPECT_EQ(answerToKey(Buttons::YesNo, Qt::Key_Return), 6);
    EXPECT_EQ(answerToKey(Buttons::RetryCancel, Qt::Key_Return), 4);
}

TEST_F(MessageBoxTest, answersTheCloseBox) {
    const auto close = [](QMessageBox* box) { box->close(); };
    EXPECT_EQ(answer(Buttons::YesNo, close), 7);
    EXPECT_EQ(answer(Buttons::RetryCancel, close), 2);
}

// The program's end closes what is open; nobody has said that anything is to be done.
TEST_F(MessageBoxTest, answersNoForABoxThatNobodyHasAnswered) {
    for (const Buttons buttons : {Buttons::OkCancel, Buttons::YesNo, Buttons::RetryCancel}) {
        EXPECT_EQ(answer(buttons, [](QMessageBox* box) { box->reject(); }), app::kAnswerNo);
    }
}

TEST_F(MessageBoxTest, showsPlainTextAndCaptionsInTheProgramsLanguage) {
    for (const int locale : {1031, 1033}) {
        app::setLanguage(locale);
        QStringList captions;
        answer(Buttons::YesNo, [&](QMessageBox* box) {
            for (const QAbstractButton* button : box->buttons()) {
                captions += button->text();
            }
            EXPECT_TRUE(box->buttons().first()->icon().isNull());
            EXPECT_EQ(box->text(), "<b>a</b> & b");
            EXPECT_EQ(box->textFormat(), Qt::PlainText);
            EXPECT_EQ(box->icon(), QMessageBox::NoIcon);
            box->close();
        });
        captions.sort();
        EXPECT_EQ(captions,
                  locale == 1031 ? (QStringList{"&Ja", "&Nein"}) : (QStringList{"&No", "&Yes"}));
    }
}

// The title of a box with a short text read "Ren...ture".
TEST_F(MessageBoxTest, isWideEnoughForItsTitle) {
    QTimer::singleShot(0, [] {
        QWidget* box = QApplication::activeModalWidget();
        ASSERT_NE(box, nullptr);
        const int windowButtons = 100;
        EXPECT_GT(box->width(),
                  box->fontMetrics().horizontalAdvance(box->windowTitle()) + windowButtons);
        box->close();
    });
    app::msgBox("x", Buttons::Ok, "Neue Gruppe erstellen", nullptr);
}

TEST_F(MessageBoxTest, namesFileAndCauseOfAnError) {
    const compound::Error error(compound::ErrorCode::Denied, "/srv/Pumpen ä.stg", "open: no way");
    EXPECT_EQ(app::errorText(error), "/srv/Pumpen ä.stg\nKeine Berechtigung. (open: no way)");
    // A cause that only repeats the kind, in another language, is left out.
    const compound::Error locked(compound::ErrorCode::Locked, "/srv/a.stg", "the file is in use");
    EXPECT_EQ(app::errorText(locked),
              "/srv/a.stg\nDie Datei wird von einem anderen Programm benutzt.");
    const std::exception& general = error;
    EXPECT_EQ(app::errorText(general), app::errorText(error));
    EXPECT_TRUE(app::errorText(std::runtime_error("no idea")).contains("no idea"));
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen"); // also while CTest asks for the list of tests
    }
    const QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
