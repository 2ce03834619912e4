#include <QGuiApplication>

#include <gtest/gtest.h>

// Placeholders are drawn with a font, which needs an application object.
int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen"); // also while CTest asks for the list of tests
    }
    ::testing::InitGoogleTest(&argc, argv);
    const QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
