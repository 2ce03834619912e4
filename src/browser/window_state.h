// Where the main window stands, how large it is and whether it is maximised, from one run to the
// next, and where its inner edges are: a settings section of its own, in device-independent pixels,
// the edges in twips.
#pragma once

#include "browser/main_layout.h"

#include <QList>
#include <QRect>

class QWidget;

namespace browser {

struct WindowState {
    QRect place; // without the frame that the window manager draws; invalid: nothing remembered
    bool maximised = false;
};

// What is remembered; whatever makes no sense counts as nothing.
WindowState readWindowState();

// Throws compound::Error naming the settings file.
void writeWindowState(const WindowState& state);

// The place, moved and made smaller so that it lies on the screen that shows most of it, or on the
// first one, with room for the title bar above it; `minimum` is kept even where a screen is
// smaller. Invalid for an invalid place.
QRect placeOnScreens(const QRect& place, QSize minimum, const QList<QRect>& screens);

// Before the first showing and at the end.
void restoreWindowState(QWidget& window);
void saveWindowState(const QWidget& window);

// Where the user has left the inner edges; the design's places when nothing sensible is remembered.
Columns readColumns();
void writeColumns(const Columns& columns); // throws as writeWindowState()

} // namespace browser
