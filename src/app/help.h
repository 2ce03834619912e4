// Context help, by the number of the topic.
#pragma once

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

} // namespace app
