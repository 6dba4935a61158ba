#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char* argv[]) {
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    // A test's window may close many times in one process.
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
