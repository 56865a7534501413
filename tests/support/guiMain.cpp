#include <QApplication>
#include <QStandardPaths>
#include <gmock/gmock.h>

#if defined(__SANITIZE_ADDRESS__)
// Leaks are looked for at the very end. By then a driver that was unloaded could not be told by its name,
// which lsan.supp goes by.
extern "C" __attribute__((visibility("default"))) int dlclose(void* /*library*/) noexcept {
    return 0;
}
#endif

int main(int argc, char** argv) {
    ::testing::InitGoogleMock(&argc, argv);
    // The user's own settings are neither read nor written by tests.
    QStandardPaths::setTestModeEnabled(true);
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
