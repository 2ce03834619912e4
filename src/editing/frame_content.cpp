#include "editing/frame_content.h"

#include <QGroupBox>
#include <QVBoxLayout>

namespace editing {

void fillFrame(QGroupBox* frame, std::initializer_list<QWidget*> content) {
    constexpr int kMargin = 6;
    auto* layout = new QVBoxLayout(frame);
    layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    for (QWidget* widget : content) {
        layout->addWidget(widget);
    }
}

} // namespace editing
