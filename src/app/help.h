// Context help, by the number of the topic.
#pragma once

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

// Opens the help file at the topic. Where that is impossible a box names the help file.
void showHelp(HelpTopic topic, QWidget* owner);

// Lets the button and the key F1 show the window's topic.
void offerHelp(QWidget& window, QAbstractButton* button, HelpTopic topic);

// Tests look which topic is shown. An empty handler restores the help file.
using HelpHandler = std::function<void(HelpTopic topic)>;
void setHelpHandler(HelpHandler handler);

} // namespace app
