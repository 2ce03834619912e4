// The program's own help as the build has compiled it, and help files that are none.
#include "app/help.h"
#include "app/help_window.h"
#include "app/message_box_script.h"
#include "app/settings.h"
#include "app/texts.h"
#include "compound/error.h"
#include "platform/own_home.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QRegularExpression>
#include <QSet>
#include <QTest>
#include <QTreeWidget>

#include <algorithm>
#include <gtest/gtest.h>

namespace {

const QString kStudiosPlace = QStringLiteral("TalvixStudio/Common/HelpFiles/TXSGraphicsLib.chm");

class HelpTest : public testing::TestWithParam<std::int32_t> {
  protected:
    HelpTest() {
        app::setLanguage(GetParam());
        app::settings().readPaths();
    }
    ~HelpTest() override {
        app::closeHelp();
        app::setOwnHelpFolder({});
        app::setLanguage(app::kGermanLocale);
    }

    bool isEnglish() const { return GetParam() == app::kEnglishLocale; }

    QString ownFile() const {
        return QStringLiteral(TXS_HELP_FOLDER) + (isEnglish() ? "/en" : "/de") +
               "/TXSGraphicsLib.chm";
    }

    QByteArray wholeFile() const {
        QFile file(ownFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    static app::HelpWindow* window() {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (auto* help = qobject_cast<app::HelpWindow*>(widget)) {
                return help;
            }
        }
        return nullptr;
    }

    static QTextBrowser* page() { return window()->findChild<QTextBrowser*>("page"); }

    OwnHome home_;
    MessageBoxScript boxes_;
};

INSTANTIATE_TEST_SUITE_P(Languages, HelpTest,
                         testing::Values(app::kGermanLocale, app::kEnglishLocale));

TEST_P(HelpTest, opensEveryTopicUnderTheTitleOfItsWindow) {
    // The texts are the captions of the windows; the main window has no caption of its own.
    constexpr int kCaptions[] = {-1, 0, 600, 400, 700, 900, 100, 500, 1000, 1100};
    for (int topic = 1; topic <= 10; ++topic) {
        app::showHelp(static_cast<app::HelpTopic>(topic), nullptr);
        ASSERT_NE(window(), nullptr) << boxes_.takeText().toStdString();
        const int caption = kCaptions[topic - 1];
        const QString expected = caption >= 0  ? app::text(caption)
                                 : isEnglish() ? "Pictures in groups"
                                               : "Bilder in Gruppen";
        EXPECT_EQ(page()->documentTitle(), expected) << topic;
        EXPECT_TRUE(page()->toPlainText().startsWith(expected)) << topic;
        const auto* current = window()->findChild<QTreeWidget*>("contents")->currentItem();
        ASSERT_NE(current, nullptr) << topic;
        EXPECT_EQ(current->text(0), expected) << topic;
    }
    EXPECT_TRUE(boxes_.take().isEmpty());
}

TEST_P(HelpTest, leadsNowhereThatIsNotThere) {
    const app::HelpFile file(ownFile());
    QSet<QString> linked;
    for (const app::HelpEntry& entry : file.contents()) {
        if (entry.page.isEmpty()) {
            continue; // a heading
        }
        const auto bytes = file.read(entry.page);
        ASSERT_TRUE(bytes) << entry.page.toStdString();
        static const QRegularExpression kTarget("(?:href|src)=\"([^\"]+)\"");
        for (auto found = kTarget.globalMatch(QString::fromUtf8(*bytes)); found.hasNext();) {
            const QString target = '/' + found.next().captured(1);
            linked.insert(target);
            EXPECT_TRUE(file.read(target)) << (entry.page + " -> " + target).toStdString();
        }
    }
    EXPECT_GE(linked.size(), 11); // ten pages and their style
}

TEST_P(HelpTest, goesBackAndForwardOverLinksAndContents) {
    app::showHelp(app::HelpTopic::MainWindow, nullptr);
    QAction* back = window()->findChild<QAction*>("back");
    QAction* forward = window()->findChild<QAction*>("forward");
    EXPECT_FALSE(back->isEnabled());
    page()->setSource(QUrl("add-picture.html")); // as a click on the link does
    EXPECT_EQ(page()->documentTitle(), app::text(900));
    auto* contents = window()->findChild<QTreeWidget*>("contents");
    contents->setCurrentItem(contents->findItems(app::text(1100), Qt::MatchRecursive).value(0));
    EXPECT_EQ(page()->documentTitle(), app::text(1100));
    back->trigger();
    EXPECT_EQ(page()->documentTitle(), app::text(900));
    forward->trigger();
    EXPECT_EQ(page()->documentTitle(), app::text(1100));
    page()->setSource(QUrl("nowhere.html"));
    EXPECT_TRUE(page()->toPlainText().contains("/nowhere.html"));
    app::showHelp(app::HelpTopic::EditGroup, nullptr); // the way back is kept
    back->trigger();
    EXPECT_TRUE(page()->toPlainText().contains("/nowhere.html"));
}

TEST_P(HelpTest, findsOnThePageFromItsEndOverToItsBeginning) {
    app::showHelp(app::HelpTopic::MainWindow, nullptr);
    QApplication::setActiveWindow(window());
    QTest::keySequence(window(), QKeySequence::Find);
    auto* field = window()->findChild<QLineEdit*>("search");
    ASSERT_TRUE(field->hasFocus());
    const QString wanted = isEnglish() ? "GROUP" : "GRUPPE";
    QTest::keyClicks(field, wanted);
    const auto places = page()->toPlainText().count(wanted, Qt::CaseInsensitive);
    ASSERT_GT(places, 1);
    QList<int> found;
    for (qsizetype i = 0; i <= places; ++i) {
        EXPECT_EQ(page()->textCursor().selectedText().toUpper(), wanted);
        found.append(page()->textCursor().position());
        QTest::keyClick(field, Qt::Key_Return);
    }
    EXPECT_TRUE(std::is_sorted(found.begin(), found.end() - 1));
    EXPECT_EQ(found.last(), found.first());
    QTest::keyClicks(field, "?");
    EXPECT_FALSE(page()->textCursor().hasSelection());
}

TEST_P(HelpTest, canBeUsedWhileItsDialogIsModal) {
    QDialog dialog;
    dialog.setModal(true);
    dialog.show();
    app::showHelp(app::HelpTopic::AddPicture, &dialog);
    auto* contents = window()->findChild<QTreeWidget*>("contents");
    const QTreeWidgetItem* first = contents->topLevelItem(0);
    contents->scrollToItem(first);
    QTest::mouseClick(contents->viewport(), Qt::LeftButton, {},
                      contents->visualItemRect(first).center());
    EXPECT_EQ(page()->documentTitle(), first->text(0));
    QApplication::setActiveWindow(window());
    QTest::keyClick(page(), Qt::Key_Escape);
    EXPECT_FALSE(window()->isVisible());
    EXPECT_TRUE(dialog.isVisible());
}

TEST_P(HelpTest, namesTheFileThatIsBroken) {
    const QByteArray whole = wholeFile();
    const QByteArray header = whole.left(96);
    for (const QByteArray& bytes : {QByteArray(), QByteArray("no help"), header}) {
        home_.write(kStudiosPlace, bytes);
        app::showHelp(app::HelpTopic::SavePicture, nullptr);
        EXPECT_TRUE(boxes_.takeText().contains(home_.at(kStudiosPlace))) << bytes.size();
    }
    EXPECT_EQ(window(), nullptr);
    // Cut anywhere or with bytes turned over it shows what is left of it, or says what is broken.
    for (qsizetype cut = 200; cut < whole.size(); cut += whole.size() / 40) {
        QByteArray damaged = whole;
        for (qsizetype at = cut; at < std::min(cut + 64, whole.size()); ++at) {
            damaged[at] = static_cast<char>(~damaged[at]);
        }
        for (const QByteArray& bytes : {whole.left(cut), damaged}) {
            home_.write(kStudiosPlace, bytes);
            app::closeHelp();
            app::showHelp(app::HelpTopic::SavePicture, nullptr);
            EXPECT_NE(window() == nullptr, boxes_.take().isEmpty()) << cut;
        }
    }
}

TEST_P(HelpTest, prefersTheStudiosFileAndTellsOfAMissingTopic) {
    app::setOwnHelpFolder(home_.at("none"));
    app::showHelp(app::HelpTopic::SavePicture, nullptr);
    EXPECT_TRUE(boxes_.takeText().contains(home_.at(kStudiosPlace)));
    home_.write(kStudiosPlace, wholeFile());
    app::showHelp(app::HelpTopic::SavePicture, nullptr);
    EXPECT_EQ(page()->documentTitle(), app::text(1100));
    app::showHelp(static_cast<app::HelpTopic>(99), nullptr);
    EXPECT_TRUE(boxes_.takeText().contains(home_.at(kStudiosPlace)));
}

} // namespace
