// Making the controls of a window. Each has its given name, by which tests and screen readers find
// it, and belongs to the parent that it is made with.
#pragma once

#include <QLabel>
#include <QString>

namespace app {

template <typename Control, typename... Arguments>
Control* makeNamed(const char* name, Arguments... arguments) {
    auto* control = new Control(arguments...);
    control->setObjectName(QString::fromLatin1(name));
    return control;
}

// A label whose text is never taken for HTML, whatever a file's or a group's name looks like.
inline QLabel* makePlainLabel(const char* name, QWidget* parent) {
    auto* label = makeNamed<QLabel>(name, parent);
    label->setTextFormat(Qt::PlainText);
    return label;
}

} // namespace app
