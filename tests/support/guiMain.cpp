#include <QApplication>
#include <QStandardPaths>
#include <gmock/gmock.h>

int main(int argc, char** argv) {
    ::testing::InitGoogleMock(&argc, argv);
    // The user's own settings are neither read nor written by tests.
    QStandardPaths::setTestModeEnabled(true);
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
