#include "bench/pic/copyLoop.h"

#include <algorithm>
#include <cstring>

namespace {

using Block = quint64 __attribute__((vector_size(64)));

// One clone per instruction set, so that the loop is bound by memory and not by its vectors.
__attribute__((target_clones("avx512f", "avx2", "default"))) quint64 readAll(const quint8* bytes,
                                                                             size_t count) {
    Block mix[2] = {};
    for (size_t byte = 0; byte + 2 * sizeof(Block) <= count; byte += 2 * sizeof(Block)) {
        Block block[2];
        std::memcpy(block, bytes + byte, sizeof(block));
        mix[0] ^= block[0];
        mix[1] ^= block[1];
    }
    mix[0] ^= mix[1];
    quint64 result = 0;
    for (int lane = 0; lane < 8; ++lane) {
        result ^= mix[0][lane];
    }
    return result;
}

} // namespace

quint64 copyLoop(const SkPicBuf& source, SkPicBuf& result) {
    const size_t sourceBytes = size_t(source.width) * source.channels * sampleBytes(source.dataType);
    const size_t resultBytes = size_t(result.width) * result.channels * sampleBytes(result.dataType);
    const quint32 stack = std::max(1U, source.height / result.height);
    quint64 mix = 0;
    for (quint32 y = 0; y < result.height; ++y) {
        for (quint32 image = 0; image < stack; ++image) {
            mix ^= readAll(source.row(image * result.height + y), sourceBytes);
        }
        std::memset(result.row(y), int(mix & 0xFF), resultBytes);
    }
    return mix;
}
