#pragma once

#include "plugins/zplToF/pic/kernels/SkToFKernels.h"

#include <cstdint>

// The portable loops serve processors without SSE4 better than narrower vectors would, and the newest
// instruction sets have nothing that these kernels need.
#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3_DL)

// Each enters the kernels of one instruction set and says whether it was built in.
bool addSimdWaveKernels(int64_t target, SkToFKernels& kernels);
bool addSimdIntegerKernels(int64_t target, SkToFKernels& kernels);
bool addSimdHybridKernels(int64_t target, SkToFKernels& kernels);

/// Defines NAME, one of the functions above, by FUNCTION, of which every instruction set has its own: Highway
/// keeps them in a table, which has no entry for a set that was not built in.
#define TOF_EXPORT_KERNELS(NAME, FUNCTION)                                                                   \
    namespace tofSimd {                                                                                      \
    HWY_EXPORT(FUNCTION);                                                                                    \
    }                                                                                                        \
    bool NAME(int64_t target, SkToFKernels& kernels) {                                                       \
        using namespace tofSimd;                                                                             \
        const auto index = hwy::Num0BitsBelowLS1Bit_Nonzero64(                                               \
            uint64_t(HWY_CHOSEN_TARGET_SHIFT((target)&HWY_TARGETS) | HWY_CHOSEN_TARGET_MASK_SCALAR));        \
        const auto add = HWY_DISPATCH_TABLE(FUNCTION)[index];                                                \
        if (add == nullptr)                                                                                  \
            return false;                                                                                    \
        add(kernels);                                                                                        \
        return true;                                                                                         \
    }
