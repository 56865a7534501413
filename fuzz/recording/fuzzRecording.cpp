#include "fuzz/recording/recordingFuzz.h"

#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    // A picture may need two thousand times the size of its file.
    if (size > 16 * 1024) {
        return -1;
    }
    const std::string broken = checkRecording(bytes, size);
    if (!broken.empty()) {
        std::fprintf(stderr, "%s\n", broken.c_str());
        std::abort();
    }
    return 0;
}
