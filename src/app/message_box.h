// The one way to ask or tell the user something in a box.
//
// Boxes show plain text (names may hold "<" and "&"), no icon, and buttons in the program's
// language. A box is modal and owned by the window it concerns.
#pragma once

#include <QString>

#include <functional>

class QWidget;

namespace compound {
class Error;
}

namespace app {

// Button codes.
enum class Buttons {
    Ok = 0,
    OkCancel = 1,
    YesNo = 4,
    RetryCancel = 5,
    YesNoWithCare = 4 + 256, // Enter answers No
};

// Answer codes, the values of msgBox().
enum Answer : int {
    kAnswerOk = 1,
    kAnswerCancel = 2,
    kAnswerRetry = 4,
    kAnswerYes = 6,
    kAnswerNo = 7,
};

// Shows the box and returns an Answer. Escape or the close box answer Cancel, in a Yes/No box No,
// in a box with OK alone OK; one that the program's end closes answers No. Enter presses the first
// button unless the buttons say otherwise.
int msgBox(const QString& text, Buttons buttons, const QString& title, QWidget* owner);

// What a box says about a failed operation: the file, the kind of failure in the program's
// language, and the system's own words where they tell more than the kind.
QString errorText(const compound::Error& error);

// The same for any exception that a command may meet (out of memory, ...).
QString errorText(const std::exception& error);

// The same, after the path of the group that it happened to: a file's name does not tell which of
// its groups is meant. An empty path leaves that line out.
QString groupFailureText(const QString& groupPath, const std::exception& error);

// Tests answer boxes themselves. An empty handler restores the real boxes; returns the handler that
// was set before.
using MsgBoxHandler =
    std::function<int(const QString& text, Buttons buttons, const QString& title, QWidget* owner)>;
MsgBoxHandler setMsgBoxHandler(MsgBoxHandler handler);

} // namespace app
