// Usage: txs_sample_studio [--show]    --show: with the library from the start

#include "studio.h"

#include <QApplication>
#include <QTimer>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    studio::Studio studio;
    studio.show();
    if (QCoreApplication::arguments().contains(QStringLiteral("--show"))) {
        QTimer::singleShot(0, &studio, SLOT(showLibrary()));
    }
    return QApplication::exec();
}
