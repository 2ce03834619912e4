// The main window in both languages, with short ways to use the dialogs on groups.
#pragma once

#include "platform/held_file.h"
#include "ui/every_language.h"

#include <QLineEdit>
#include <QString>
#include <QTest>

class GroupDialogsTest : public EveryLanguageTest {
  protected:
    // Opens a dialog by the action and works on its name field.
    void inNameField(const QString& action,
                     const std::function<void(QDialog&, QLineEdit&)>& steps) {
        inDialog([&] { trigger(action); },
                 [&](QDialog& dialog) { steps(dialog, *dialog.findChild<QLineEdit*>("txtNeu")); });
    }

    // Types the name, presses Enter and returns what the one box says. Its title must be `title`.
    QString answerTo(QLineEdit& field, const QString& name, const QString& title) {
        field.clear();
        QTest::keyClicks(&field, name);
        QTest::keyClick(&field, Qt::Key_Return);
        const auto boxes = boxes_.take();
        if (boxes.size() != 1) {
            return QStringLiteral("(%1 boxes)").arg(boxes.size());
        }
        EXPECT_EQ(boxes[0].title, title);
        EXPECT_EQ(boxes[0].buttons, app::Buttons::Ok);
        return boxes[0].text;
    }

    QByteArray bytesOf(const QString& fileName) const {
        QFile file(QString::fromStdString((library().folder / fileName.toStdString()).string()));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::unique_ptr<compound::DiskFile> lockFile(const char* fileName) const {
        auto file = holdLocked(library().folder / fileName);
        return file;
    }
};
