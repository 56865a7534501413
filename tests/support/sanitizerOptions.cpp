// Asking for more memory than there is has to end in a null pointer, also under a sanitizer, which would
// otherwise end the program. Options of the environment come on top.

extern "C" {
// Hidden they would not be seen by the sanitizers' library.
__attribute__((visibility("default"))) const char* __asan_default_options();
__attribute__((visibility("default"))) const char* __tsan_default_options();

const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}

const char* __tsan_default_options() {
    return "allocator_may_return_null=1";
}
}
