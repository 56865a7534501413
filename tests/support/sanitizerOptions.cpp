// An allocation that is too large must return null also under a sanitizer, which aborts by default. Options
// from the environment override these.

extern "C" {
// The sanitizer runtime does not find hidden symbols.
__attribute__((visibility("default"))) const char* __asan_default_options();
__attribute__((visibility("default"))) const char* __tsan_default_options();

const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}

const char* __tsan_default_options() {
    return "allocator_may_return_null=1";
}
}
