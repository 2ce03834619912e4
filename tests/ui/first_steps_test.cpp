// What an empty library offers.
#include "app/settings.h"
#include "commands/sample_library.h"
#include "editing/folder_list.h"
#include "store/picture_operations.h"
#include "ui/main_window_fixture.h"

#include <QDir>
#include <QPushButton>
#include <QTest>

namespace {

class FirstSteps : public MainWindowTest {
  protected:
    FirstSteps() { commands::useSamplesFolder(home_.at("samples")); }
    ~FirstSteps() override { commands::useSamplesFolder({}); }

    bool areShown() {
        QCoreApplication::processEvents();
        return find<QWidget>("fraErsteSchritte")->isVisible();
    }

    void press(const QString& button) {
        auto* pressed = find<QPushButton>(button);
        pressed->setFocus();
        QTest::keyClick(pressed, Qt::Key_Space);
        settle();
    }

    // A sample group with one picture, made in the library and moved out of it.
    void makeSample(const QString& name) {
        addPicture(makeGroup(name), name + " 1");
        const std::filesystem::path folder = home_.at("samples").toStdString();
        std::filesystem::create_directories(folder);
        std::filesystem::rename(library().folder / (name + ".stg").toStdString(),
                                folder / (name + ".stg").toStdString());
    }
};

TEST_F(FirstSteps, StandInAnEmptyLibraryOnly) {
    start();
    EXPECT_TRUE(areShown());
    EXPECT_FALSE(find<QWidget>("cmdBeispiele")->isVisible()) << "none are installed";
    inDialog([this] { press("cmdNeueGruppe"); },
             [](QDialog& dialog) { EXPECT_EQ(dialog.objectName(), "frmNeueGruppe"); });
    EXPECT_TRUE(areShown());
    const auto group = makeGroup("Pumpen");
    window().lookForChanges();
    settle();
    EXPECT_FALSE(areShown());
    store::removeGroupFile(library(), group.file);
    window().refresh();
    settle();
    EXPECT_TRUE(areShown());
}

TEST_F(FirstSteps, TheSamplesComeNextToWhatIsThere) {
    makeSample("Pumpen");
    makeSample("Ventile");
    start();
    ASSERT_TRUE(find<QWidget>("cmdBeispiele")->isVisible());
    const auto own = makeGroup("Pumpen"); // by another program, a moment ago
    addPicture(own, "Meine");
    press("cmdBeispiele");
    EXPECT_FALSE(areShown());
    EXPECT_EQ(storagesFolder(), (QStringList{"Pumpen.stg", "Ventile.stg"}));
    EXPECT_EQ(selectedNode(), "Ventile");
    EXPECT_EQ(label(), "Ventile 1");
    EXPECT_EQ(store::listPictures(library(), own).front().name.text, u"Meine");
    EXPECT_EQ(boxes_.take().size(), 0);
}

// Until somewhere else was chosen, and not where there is no such folder.
TEST_F(FirstSteps, PicturesAreLookedForAmongTheUsersPictures) {
    makeGroup("Pumpen");
    start();
    clickNode("Pumpen");
    const auto folderAtOpening = [this](const QString& goOn) {
        QString folder;
        inDialog([this] { trigger("Men_Bearbeiten_6"); },
                 [&](QDialog& dialog) {
                     auto* folders = dialog.findChild<editing::FolderList*>("dirOrdner");
                     ASSERT_NE(folders, nullptr);
                     folder = folders->folder();
                     if (!goOn.isEmpty()) {
                         folders->setFolder(goOn);
                     }
                 });
        return folder;
    };
    EXPECT_EQ(folderAtOpening({}), QDir::homePath()) << "without a folder of pictures";
    app::settings().readPaths(); // as a new start does
    QDir().mkpath(home_.at("Pictures"));
    QDir().mkpath(home_.at("Other"));
    EXPECT_EQ(folderAtOpening(home_.at("Other")), home_.at("Pictures"));
    EXPECT_EQ(folderAtOpening({}), home_.at("Other"));
}

} // namespace
