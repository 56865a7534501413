#include <QApplication>
#include <QStandardPaths>
#include <gmock/gmock.h>

#if defined(__SANITIZE_ADDRESS__)
// Leaks are reported at exit, when the symbols of an unloaded driver, which lsan.supp matches, would be gone.
extern "C" __attribute__((visibility("default"))) int dlclose(void* /*library*/) noexcept {
    return 0;
}

// The leak checker guesses how the C library lays out the thread-local storage of loaded libraries. When such
// a block starts 16 bytes into a page, it mistakes its own bookkeeping for an address and crashes, in about
// one of 300 runs with an OpenGL driver. Without the guess the blocks are still reachable from the loader.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() noexcept {
    return "intercept_tls_get_addr=0";
}
#endif

int main(int argc, char** argv) {
    ::testing::InitGoogleMock(&argc, argv);
    // Tests neither read nor write the settings of the user.
    QStandardPaths::setTestModeEnabled(true);
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
