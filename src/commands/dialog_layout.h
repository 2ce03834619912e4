// How the small dialogs that ask for a name are laid out.
#pragma once

#include <initializer_list>

class QDialog;
class QLabel;
class QLineEdit;
class QPushButton;

namespace commands {

// A prompt with its field beside it, and below them the buttons from left to right, at the right
// end. The dialog keeps the size that this needs; the widgets become its own.
void layOutNameDialog(QDialog& dialog, QLabel* prompt, QLineEdit* field,
                      std::initializer_list<QPushButton*> buttons);

} // namespace commands
