// What an empty library shows in the place of its pictures: the ways to the first group, each a
// button that runs a command.
#pragma once

#include "commands/command_tables.h"

#include <QFrame>

#include <vector>

class QLabel;
class QPushButton;

namespace browser {

class FirstSteps : public QFrame {
    Q_OBJECT

  public:
    explicit FirstSteps(QWidget* parent);

    void setCaptions();

    // Tab order: what comes before.
    void setTabOrderAfter(QWidget* before);

  signals:
    void wanted(commands::Command command);

  private:
    struct Way {
        QPushButton* button;
        commands::Command command;
    };

    QLabel* heading_;
    std::vector<Way> ways_;
};

} // namespace browser
