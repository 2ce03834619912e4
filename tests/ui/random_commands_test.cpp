// Random commands in the real main window on a real library, and the same in a model: after every
// step tree, list, thumbnails, label, preview, the files and all that is in them agree.
//
// Long runs by hand: TXS_COMMANDS_SEEDS (how many), TXS_COMMANDS_FIRST_SEED, TXS_COMMANDS_STEPS
// (for each seed); TXS_COMMANDS_LOG=1 tells every step while it is done.
#include "app/number_text.h"
#include "app/patience.h"
#include "app/settings.h"
#include "app/texts.h"
#include "base/utf8.h"
#include "compound/compound_file.h"
#include "platform/native_disk.h"
#include "ui/random_commands_fixture.h"

#include <QAbstractEventDispatcher>
#include <QAction>
#include <QApplication>
#include <QDeadlineTimer>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTimer>

#include <iostream>
#include <numeric>

namespace {

using library_model::Content;
using library_model::Source;

constexpr int kSeeds = 4; // both languages, each with both decimal separators
constexpr int kSteps = 1000;
constexpr std::size_t kToldSteps = 20;
constexpr std::size_t kManyGroups = 12;
constexpr QSize kWindowSize(360, 420); // few thumbnails, so that there are several pages

int fromEnvironment(const char* name, int otherwise) {
    return qEnvironmentVariableIsSet(name) ? qEnvironmentVariableIntValue(name) : otherwise;
}

std::vector<int> seeds() {
    std::vector<int> all(static_cast<std::size_t>(fromEnvironment("TXS_COMMANDS_SEEDS", kSeeds)));
    std::iota(all.begin(), all.end(), fromEnvironment("TXS_COMMANDS_FIRST_SEED", 1));
    return all;
}

QString noPictureIn(int locale) {
    app::setLanguage(locale);
    return app::text(app::kTextNoPicture);
}

void appendElements(compound::Storage storage, const QString& path, Content& content) {
    compound::ElementCursor cursor = storage.elements();
    for (compound::Element element; cursor.next(element);) {
        const QString name = path + QString::fromStdU16String(element.name);
        if (element.kind == compound::ElementKind::Storage) {
            content[name + u'/'] = {};
            appendElements(storage.openStorage(element.name), name + u'/', content);
        } else {
            const auto bytes = storage.openStream(element).readAll();
            content[name] = QByteArray(reinterpret_cast<const char*>(bytes.data()),
                                       static_cast<qsizetype>(bytes.size()));
        }
    }
}

QString differences(const Content& expected, const Content& found) {
    QString text;
    for (const auto& [path, bytes] : expected) {
        const auto stream = found.find(path);
        if (stream == found.end()) {
            text += "missing " + path + u'\n';
        } else if (stream->second != bytes) {
            text += "other bytes in " + path + u'\n';
        }
    }
    for (const auto& [path, bytes] : found) {
        text += expected.contains(path) ? QString() : "unexpected " + path + u'\n';
    }
    return text;
}

} // namespace

RandomCommands::RandomCommands()
    : random_(static_cast<unsigned>(GetParam())),
      separator_(GetParam() % 4 < 2 ? u',' : u'.'),
      sources_(library_model::makeSources()),
      model_(separator_),
      screen_(model_, noPictureIn(GetParam() % 2 == 1 ? app::kGermanLocale : app::kEnglishLocale)) {
    app::overrideDecimalSeparator(separator_);
    for (const Source& source : sources_) {
        home_.write("pictures/" + source.file, source.bytes);
    }
    home_.write(QStringLiteral("pictures/") + kNoPictureFile, "BM but no picture");
}

// --- Helpers

void RandomCommands::note(const QString& step) {
    told_.push_back(plain(QStringLiteral("%1: %2").arg(step_).arg(step)));
    if (told_.size() > kToldSteps) {
        told_.pop_front();
    }
    addNote({});
}

void RandomCommands::addNote(const QString& more) {
    told_.back() += plain(more);
    if (qEnvironmentVariableIntValue("TXS_COMMANDS_LOG") > 0) {
        std::cerr << (more.isEmpty() ? told_.back() : "    " + plain(more)) << std::endl;
    }
}

void RandomCommands::quiesce() {
    const QDeadlineTimer patience(kPatienceMilliseconds);
    QAbstractEventDispatcher* events = QAbstractEventDispatcher::instance();
    while (!patience.hasExpired()) {
        const bool isSettled = window().isSettled();
        const auto flag = isSettled ? QEventLoop::AllEvents : QEventLoop::WaitForMoreEvents;
        if (!events->processEvents(flag) && isSettled) {
            break;
        }
    }
    ASSERT_TRUE(window().isSettled());
}

void RandomCommands::run(const QString& action, Opens opens, const InDialog& inDialog,
                         Answer answer) {
    addNote(" by " + action);
    MessageBoxScript script({}, static_cast<int>(answer));
    script_ = &script;
    int opened = 0;
    QTimer looking; // again and again: a command may process events before it opens its dialog
    QObject::connect(&looking, &QTimer::timeout, [&] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        // A slow machine shows how far an operation is, which is no dialog of the command's.
        if (dialog == nullptr || dialog->objectName() == QLatin1String("frmFortschritt")) {
            return;
        }
        looking.stop();
        ++opened;
        if (inDialog) {
            inDialog(*dialog);
        }
        dialog->close();
    });
    looking.start(0);
    perform(action);
    looking.stop();
    quiesce();
    EXPECT_EQ(opened, opens == Opens::Dialog ? 1 : 0) << "dialogs";
    compareBoxes();
    script_ = nullptr;
}

void RandomCommands::perform(const QString& action) {
    if (action == kDoubleClick) {
        QTest::mouseDClick(find<QWidget>("imgVorschau"), Qt::LeftButton);
    } else if (const qsizetype on = action.indexOf(" on "); on > 0) {
        press(find<QWidget>(action.mid(on + 4)), QKeySequence(action.left(on)));
    } else {
        trigger(action);
    }
}

void RandomCommands::press(QWidget* widget, const QKeySequence& key) {
    QApplication::setActiveWindow(&window()); // a dialog may have been it
    widget->setFocus();
    QTest::keyClick(widget, key[0].key(), key[0].keyboardModifiers());
}

void RandomCommands::compareBoxes() {
    QStringList told;
    for (const MessageBoxScript::Box& box : script_->take()) {
        const bool isAny = expected_.value(told.size()) == "*";
        told.append(isAny ? QStringLiteral("*") : box.text);
    }
    EXPECT_EQ(plain(told.join(" | ")), plain(expected_.join(" | "))) << "boxes";
    expected_.clear();
}

void RandomCommands::press(QDialog& dialog, const QString& button) {
    QTest::mouseClick(dialog.findChild<QPushButton*>(button), Qt::LeftButton);
}

void RandomCommands::type(QLineEdit* field, const QString& text) {
    addNote(" \"" + text + u'"');
    field->selectAll();
    QTest::keyClick(field, Qt::Key_Delete);
    for (const QChar character : text) {
        if (character.unicode() < 0x80) {
            QTest::keyClicks(field, character);
        } else {
            field->insert(character); // as an input method does
        }
    }
}

void RandomCommands::accept(QDialog& dialog, QLineEdit* field) {
    if (oneIn(2)) {
        QTest::keyClick(field, Qt::Key_Return);
    } else {
        press(dialog, "cmdOK");
    }
    compareBoxes();
}

void RandomCommands::leave(QDialog& dialog, const QString& button) {
    if (oneIn(2)) {
        press(dialog, button);
    } else {
        QTest::keyClick(&dialog, Qt::Key_Escape);
    }
    EXPECT_FALSE(dialog.isVisible());
}

void RandomCommands::expectText(QDialog& dialog, const char* label, const QString& text) {
    EXPECT_EQ(plain(dialog.findChild<QLabel*>(QString::fromUtf8(label))->text()), plain(text))
        << label;
}

void RandomCommands::startSmall() {
    start();
    app::settings().setDrive("/");
    app::settings().setPath(home_.at("pictures"));
    window().resize(kWindowSize);
    quiesce();
    screen_.cells = static_cast<int>(strip()->cells());
}

void RandomCommands::startAgain() {
    window().close();
    startSmall();
    screen_.restart();
}

// --- The comparison

void RandomCommands::compareTree() {
    QString found;
    for (QTreeWidgetItemIterator node(tree()); *node != nullptr; ++node) {
        int depth = 0;
        for (auto* above = (*node)->parent(); above != nullptr; above = above->parent()) {
            ++depth;
        }
        found += QString(depth, u'-') + (*node)->text(0) + " = " +
                 (*node)->data(0, Qt::UserRole).toString() + u'\n';
    }
    QString expected;
    for (const library_model::Node& node : model_.nodes()) {
        expected += QString(node.depth, u'-') + node.text + " = " + node.key + u'\n';
    }
    EXPECT_EQ(plain(found), plain(expected)) << "tree";
    const auto selected = window().selectedGroup();
    EXPECT_EQ(selected ? base::toUtf8(store::keyOf(selected->address)) : std::string(),
              screen_.selected ? plain(screen_.selected->key()) : std::string())
        << "selected group";
}

void RandomCommands::compareThumbnails() {
    const auto page = screen_.page();
    const QImage image = strip()->grab().toImage();
    QString found;
    QString expected;
    for (int i = 0; i < screen_.cells; ++i) {
        const auto index = static_cast<std::size_t>(i);
        found += strip()->cell(index).tag() + u' ' + image.pixelColor(centreOf(i)).name() + u'\n';
        const QColor none = strip()->palette().color(QPalette::Base);
        expected += (index < page.size() ? page[index].name : QString()) + u' ' +
                    (index < page.size() ? page[index].source->colour : none).name() + u'\n';
    }
    EXPECT_EQ(plain(found), plain(expected)) << "thumbnails";
    EXPECT_EQ(find<QScrollBar>("imgScroll")->maximum(), screen_.lastPage());
    EXPECT_EQ(find<QScrollBar>("imgScroll")->value(), screen_.pageNumber());
}

void RandomCommands::compareRows() {
    QString found;
    for (int i = 0; i < list()->topLevelItemCount(); ++i) {
        const QTreeWidgetItem* row = list()->topLevelItem(i);
        found += row->text(0) + u' ' + row->text(2) + u' ' + row->text(3) + u' ' + row->text(4) +
                 (row->isSelected() ? " selected\n" : "\n");
    }
    QString expected;
    for (const auto& [name, source] : screen_.rows) {
        expected += name + u' ' + numberText(source->height) + u' ' + numberText(source->width) +
                    u' ' + source->type + (name == screen_.label ? " selected\n" : "\n");
    }
    EXPECT_EQ(plain(found), plain(expected)) << "list";
}

void RandomCommands::comparePictures() {
    EXPECT_EQ(strip()->isVisible(), screen_.isStrip);
    EXPECT_EQ(list()->isVisible(), !screen_.isStrip);
    if (screen_.isStrip) {
        compareThumbnails();
    } else {
        compareRows();
    }
    EXPECT_EQ(plain(label()), plain(screen_.label)) << "label";
    auto* preview = find<QWidget>("imgVorschau");
    const QColor centre = preview->grab().toImage().pixelColor(preview->rect().center());
    const QColor none = preview->palette().color(QPalette::Base);
    EXPECT_EQ(plain(centre.name()),
              plain((screen_.preview != nullptr ? screen_.preview->colour : none).name()))
        << "preview";
}

void RandomCommands::compareFiles() {
    QStringList expected = model_.fileNames();
    expected.sort();
    QStringList found = storagesFolder();
    found.sort();
    ASSERT_EQ(plain(found.join(u'\n')), plain(expected.join(u'\n'))) << "files";
    for (const QString& name : found) {
        const std::filesystem::path path = library().folder / plain(name);
        auto file = compound::CompoundFile::open(
            platform::nativeDisk().open(path, compound::Access::Read), compound::Access::Read);
        Content content;
        appendElements(file.root(), {}, content);
        EXPECT_EQ(plain(differences(model_.contentOf(name.chopped(4)), content)), "")
            << plain(name);
    }
}

void RandomCommands::checkFiles() {
    for (const QString& name : storagesFolder()) {
        const std::filesystem::path path = library().folder / plain(name);
        auto file = compound::CompoundFile::open(
            platform::nativeDisk().open(path, compound::Access::Read), compound::Access::Read);
        for (const compound::Finding& finding : file.check()) {
            ADD_FAILURE() << path << ": " << finding.where << ": " << finding.what;
        }
    }
}

void RandomCommands::step() {
    struct Choice {
        int weight;
        const char* name;
        void (RandomCommands::*run)();
    };
    static constexpr Choice kChoices[] = {
        {10, "new group", &RandomCommands::newGroup},
        {8, "rename group", &RandomCommands::renameGroup},
        {3, "delete group", &RandomCommands::deleteGroup},
        {2, "group info", &RandomCommands::showGroupInfo},
        {20, "add pictures", &RandomCommands::addPictures},
        {8, "rename picture", &RandomCommands::renamePicture},
        {6, "rename in place", &RandomCommands::renameInPlace},
        {6, "delete picture", &RandomCommands::deletePicture},
        {4, "picture info", &RandomCommands::showPictureInfo},
        {1, "library info", &RandomCommands::showLibraryInfo},
        {3, "hand over", &RandomCommands::handOver},
        {1, "read picture", &RandomCommands::readPicture},
        {2, "copy picture", &RandomCommands::copyPicture},
        {2, "edit picture", &RandomCommands::editPicture},
        {14, "click group", &RandomCommands::clickGroup},
        {2, "clear selection", &RandomCommands::clearSelection},
        {8, "choose picture", &RandomCommands::choosePicture},
        {10, "turn page", &RandomCommands::turnPage},
        {3, "toggle view", &RandomCommands::toggleView},
        {2, "refresh", &RandomCommands::refresh},
        {1, "start again", &RandomCommands::startAgain},
    };
    std::vector<const Choice*> lots;
    for (const Choice& choice : kChoices) {
        lots.insert(lots.end(), static_cast<std::size_t>(choice.weight), &choice);
    }
    const Choice* choice = anyOf(lots);
    const bool isFull = model_.groups().size() >= kManyGroups;
    if (isFull && choice->run == &RandomCommands::newGroup) {
        choice = &kChoices[2];
    }
    note(QString::fromLatin1(choice->name));
    (this->*choice->run)();
    quiesce();
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomCommands, testing::ValuesIn(seeds()));

TEST_P(RandomCommands, WindowFilesAndModelStayTheSame) {
    startSmall();
    screen_.restart();
    const int steps = fromEnvironment("TXS_COMMANDS_STEPS", kSteps);
    for (step_ = 1; step_ <= steps && !HasFailure(); ++step_) {
        step();
        compareTree();
        comparePictures();
        compareFiles();
        checkFiles();
        EXPECT_TRUE(boxes_.take().isEmpty()) << "a box that no command has brought up";
    }
    if (HasFailure()) {
        std::string lastSteps;
        for (const std::string& told : told_) {
            lastSteps += told + '\n';
        }
        FAIL() << "seed " << GetParam() << ", the last steps:\n" << lastSteps;
    }
}
