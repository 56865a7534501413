#include <QApplication>
#include <QStandardPaths>
#include <gmock/gmock.h>

#if defined(__SANITIZE_ADDRESS__)
// Leaks are looked for at the very end. By then a driver that was unloaded could not be told by its name,
// which lsan.supp goes by.
extern "C" __attribute__((visibility("default"))) int dlclose(void* /*library*/) noexcept {
    return 0;
}

// The leak checker guesses how the C library lays out thread-local storage of loaded libraries. Where such a
// block happens to lie 16 bytes into a page, it takes its own bookkeeping for an address, and crashes in
// about one of 300 runs with an OpenGL driver. The blocks are found without that guess, as what the loader
// holds.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() noexcept {
    return "intercept_tls_get_addr=0";
}
#endif

int main(int argc, char** argv) {
    ::testing::InitGoogleMock(&argc, argv);
    // The user's own settings are neither read nor written by tests.
    QStandardPaths::setTestModeEnabled(true);
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
