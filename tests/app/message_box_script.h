// Answers message boxes in a test and records what they said. While an object lives no box appears.
#pragma once

#include "app/message_box.h"

#include <QList>
#include <QString>

#include <utility>

class MessageBoxScript {
  public:
    struct Box {
        QString text;
        app::Buttons buttons;
        QString title;
    };

    // Gives `answers` one after the other, then `last` for good.
    explicit MessageBoxScript(QList<int> answers = {}, int last = app::kAnswerOk)
        : answers_(std::move(answers)), last_(last) {
        previous_ = app::setMsgBoxHandler(
            [this](const QString& text, app::Buttons buttons, const QString& title, QWidget*) {
                boxes_.append({text, buttons, title});
                return answers_.isEmpty() ? last_ : answers_.takeFirst();
            });
    }
    ~MessageBoxScript() { app::setMsgBoxHandler(previous_); }
    MessageBoxScript(const MessageBoxScript&) = delete;
    MessageBoxScript& operator=(const MessageBoxScript&) = delete;

    // The boxes since the last call.
    QList<Box> take() { return std::exchange(boxes_, {}); }

    // The text of the one box since the last call; says so when there were more or none.
    QString takeText() {
        const QList<Box> boxes = take();
        return boxes.size() == 1 ? boxes.first().text
                                 : QStringLiteral("(%1 boxes)").arg(boxes.size());
    }

  private:
    QList<int> answers_;
    int last_;
    QList<Box> boxes_;
    app::MsgBoxHandler previous_;
};
