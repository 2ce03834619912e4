// The real main window on a real library beside a model of both: the steps of random commands,
// which do the same to each, and the comparison of the two.
#pragma once

#include "browser/thumbnail_strip.h"
#include "ui/library_model.h"
#include "ui/main_window_fixture.h"
#include "ui/random_material.h"

#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QTreeWidget>

#include <deque>
#include <random>
#include <string>

// Has temporary folders made in memory where the system offers that: a thousand commits on a slow
// disk would be most of the test's time. To be made before the fixture's home.
class TemporaryFoldersInMemory {
  public:
    TemporaryFoldersInMemory() {
        if (QFileInfo(kFolder).isWritable()) {
            qputenv("TMPDIR", kFolder);
        }
    }
    ~TemporaryFoldersInMemory() { qputenv("TMPDIR", before_); }
    TemporaryFoldersInMemory(const TemporaryFoldersInMemory&) = delete;
    TemporaryFoldersInMemory& operator=(const TemporaryFoldersInMemory&) = delete;

  private:
    static constexpr const char* kFolder = "/dev/shm";
    QByteArray before_ = QDir::tempPath().toUtf8();
};

inline constexpr const char* kNoPictureFile = "broken.bmp";
inline constexpr const char* kDoubleClick = "double click";

inline std::string plain(const QString& text) {
    return text.toStdString();
}

class RandomCommands : private TemporaryFoldersInMemory,
                       public MainWindowTest,
                       public testing::WithParamInterface<int> {
  protected:
    RandomCommands();

    // --- Chance

    int below(std::size_t limit) { return static_cast<int>(random_() % limit); }
    bool oneIn(std::size_t count) { return below(count) == 0; }

    template <typename Container>
    const auto& anyOf(const Container& container) {
        return *std::next(std::begin(container),
                          below(static_cast<std::size_t>(std::size(container))));
    }

    QString either(const char* one, const char* other) {
        return QLatin1String(oneIn(2) ? one : other);
    }
    QString anyOfThese(std::initializer_list<const char*> actions) {
        return QLatin1String(anyOf(actions));
    }

    library_model::GroupNameTrial anyGroupName();
    QString anyPictureName();

    // --- The steps; each does the same to the window and to the model

    void newGroup();
    void renameGroup();
    void deleteGroup();
    QString groupsBelowText() const;
    void showGroupInfo();
    void addPictures();
    void renamePicture();
    void renameInPlace();
    void deletePicture();
    void showPictureInfo();
    void showLibraryInfo();
    void handOver();
    void readPicture();
    void copyPicture();
    void editPicture();
    void clickGroup();
    void clearSelection();
    void choosePicture();
    void turnPage();
    void toggleView();
    void refresh();
    void startAgain();

    void step();
    void startSmall();

    // --- The comparison

    void compareTree();
    void comparePictures();
    void compareThumbnails();
    void compareRows();
    void compareFiles();
    void checkFiles();

    // --- Helpers of the steps

    void note(const QString& step);
    void addNote(const QString& more);
    void quiesce();

    enum class Opens { Dialog, Nothing };
    using InDialog = std::function<void(QDialog&)>;

    enum class Answer { Ok = app::kAnswerOk, Yes = app::kAnswerYes, No = app::kAnswerNo };
    Answer anyAnswer(); // to a question

    // An action's name, or what a hand does: a key on the tree ("F2 on tvwGruppen"), a double click
    // on the preview.
    void perform(const QString& action);
    void press(QWidget* widget, const QKeySequence& key);
    QString picturesView() const {
        return QLatin1String(screen_.isStrip ? "shpVorschau" : "lvwInfo");
    }

    // Performs the action, which opens a dialog or not, and works in it. Boxes are answered with
    // `answer` and must be those that were expected.
    void run(const QString& action, Opens opens, const InDialog& inDialog = {},
             Answer answer = Answer::Ok);
    // "*" stands for a box with any text.
    void expectBox(const QString& text) { expected_.append(text); }
    void compareBoxes();

    void type(QLineEdit* field, const QString& text);
    void accept(QDialog& dialog, QLineEdit* field);
    void leave(QDialog& dialog, const QString& button);

    // Types a name and does to the model what the window is to do with it; gives what the box says
    // to it, empty when the name is taken.
    using NameTrial = std::function<QString(QLineEdit* field)>;
    // Some names until one is taken, else leaves the dialog by the button or by Escape.
    void tryNames(QDialog& dialog, const char* fieldName, const char* cancelButton,
                  const QString& oldName, const NameTrial& enterName);
    static void press(QDialog& dialog, const QString& button);
    void expectText(QDialog& dialog, const char* label, const QString& text);

    const library_model::Source* clickFile(QDialog& dialog);
    bool storePicture(QDialog& dialog, const library_model::Source* file, Answer answer);

    // What the box says to a name; empty when the name is taken.
    QString newGroupRefusal(const std::optional<library_model::Address>& parent,
                            const QString& typed, const library_model::GroupNameTrial& name) const;
    QString renameGroupRefusal(const library_model::GroupNameTrial& name) const;
    QString addPictureRefusal(const library_model::Source* file, const QString& name) const;
    QString renamePictureRefusal(const QString& name) const;
    QString renameInPlaceRefusal(const library_model::Address& group, const QString& from,
                                 const QString& to) const;

    bool isTopSelected() const {
        return screen_.selected && screen_.selected->file == screen_.selected->storage;
    }
    bool isPictureThere() const {
        return screen_.selected && model_.hasPictureIgnoringCase(*screen_.selected, screen_.label);
    }
    const library_model::Source* shownSource() const {
        return isPictureThere() ? model_.picturesOf(screen_.selected).find(screen_.label)->second
                                : nullptr;
    }
    void expectCopy(const QString& path, const QString& fileName);
    QString groupText() const {
        return screen_.selected ? model_.find(*screen_.selected)->name : QString();
    }
    bool offersMenu() const { return screen_.selected.has_value(); }

    browser::ThumbnailStrip* strip() { return find<browser::ThumbnailStrip>("shpVorschau"); }
    QTreeWidget* list() { return find<QTreeWidget>("lvwInfo"); }
    QPoint centreOf(int cell) {
        return strip()->cell(static_cast<std::size_t>(cell)).geometry().center();
    }
    QString numberText(QString number) const { return number.replace(u'.', separator_); }

    std::mt19937 random_;
    QChar separator_;
    std::vector<library_model::Source> sources_;
    library_model::Library model_;
    library_model::Window screen_;
    MessageBoxScript* script_ = nullptr; // of the running command
    QStringList expected_;
    std::deque<std::string> told_;
    int step_ = 0;
};
