#include <QGuiApplication>

#include <gtest/gtest.h>

// Placeholders are drawn with a font, which needs an application object.
int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    const QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
