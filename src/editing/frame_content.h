// Frames of a fixed size that are filled by what stands in them.
#pragma once

#include <initializer_list>

class QGroupBox;
class QWidget;

namespace editing {

// One below the other, the last one taking the room that is left.
void fillFrame(QGroupBox* frame, std::initializer_list<QWidget*> content);

} // namespace editing
