// Walking through a modal dialog in a test.
#pragma once

#include <QApplication>
#include <QDialog>
#include <QTimer>

#include <functional>
#include <gtest/gtest.h>

// Calls `open`, and `steps` with the dialog that it opens, which may be owned by another modal one;
// what tells of a long operation before is not meant. A dialog that is still open after the steps
// is closed.
inline void inModalDialog(const std::function<void()>& open,
                          const std::function<void(QDialog&)>& steps) {
    bool wasOpen = false;
    const QWidget* const owner = QApplication::activeModalWidget();
    QTimer looking; // again and again: events may be processed before the dialog is there
    QObject::connect(&looking, &QTimer::timeout, [&] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (dialog != nullptr && dialog != owner &&
            dialog->objectName() != QLatin1String("frmFortschritt")) {
            looking.stop();
            wasOpen = true;
            steps(*dialog);
            dialog->close();
        }
    });
    looking.start(0);
    open();
    EXPECT_TRUE(wasOpen);
}
