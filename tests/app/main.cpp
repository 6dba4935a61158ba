#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char* argv[]) {
    testing::InitGoogleTest(&argc, argv);
    // Real windows that nobody sees, unless a display is asked for.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    // A test's window may close many times in one process.
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
