#include "commands/dialog_layout.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace commands {

void layOutNameDialog(QDialog& dialog, QLabel* prompt, QLineEdit* field,
                      std::initializer_list<QPushButton*> buttons) {
    auto* above = new QHBoxLayout;
    above->setSpacing(12);
    above->addWidget(prompt);
    above->addWidget(field);

    auto* below = new QHBoxLayout;
    below->setSpacing(8);
    below->addStretch();
    for (QPushButton* button : buttons) {
        below->addWidget(button);
    }

    auto* all = new QVBoxLayout(&dialog);
    all->setContentsMargins(16, 16, 16, 14);
    all->setSpacing(16);
    all->addLayout(above);
    all->addLayout(below);
    all->setSizeConstraint(QLayout::SetFixedSize);
    field->setMinimumWidth(260);
}

} // namespace commands
