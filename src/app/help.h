// Context help, by the number of the topic.
#pragma once

#include <QString>

#include <cstdint>
#include <functional>

class QAbstractButton;
class QWidget;

namespace app {

// One topic for each window's help button or menu entry.
enum class HelpTopic {
    MainWindow = 1,
    CreateGroupFromFolder = 2,
    ImportGroup = 3,
    RenamePicture = 4,
    PictureInformation = 5,
    AddPicture = 6,
    EditGroup = 7,
    GroupInformation = 8,
    BitmapEditor = 9,
    SavePicture = 10,
};

// Opens the help window at the topic: in the help file at the settings' place or, where that is
// missing, in the program's own one of the program's language. A file that is missing, broken or
// without the topic is named in a box. The window may be used while `owner` is modal.
void showHelp(HelpTopic topic, QWidget* owner);

// Closes the help window, if it is open.
void closeHelp();

// Lets the key F1, or the button as well, show the window's topic.
void offerHelp(QWidget& window, HelpTopic topic);
void offerHelp(QWidget& window, QAbstractButton* button, HelpTopic topic);

// What a system with a help service of its own is asked.
struct HelpCall {
    static constexpr std::uint32_t kShowTopic = 15;

    QString file; // as the settings name it
    std::uint32_t command = kShowTopic;
    HelpTopic topic = HelpTopic::MainWindow;
};

// Stands in for the help window, in tests for example. An empty handler restores it.
using HelpHandler = std::function<void(const HelpCall& call)>;
void setHelpHandler(HelpHandler handler);

// Tests choose where the program's own help lies: DIR/de and DIR/en. Empty restores the real place.
void setOwnHelpFolder(const QString& folder);

} // namespace app
