#pragma once

#include "plugins/zplToF/pic/kernels/SkToFKernels.h"

#include <cstdint>

// For processors without SSE4 the portable loops are faster than narrower vectors would be, and the newest
// instruction sets have nothing that these kernels need.
#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3_DL)

// Each enters the kernels of one instruction set. False when it was not built in.
bool addSimdWaveKernels(int64_t target, SkToFKernels& kernels);
bool addSimdIntegerKernels(int64_t target, SkToFKernels& kernels);
bool addSimdHybridKernels(int64_t target, SkToFKernels& kernels);

/// Defines bool NAME(int64_t target, TABLE& table) by FUNCTION, of which every instruction set has its own:
/// Highway keeps them in an array without an entry for a set that was not built in.
#define TOF_EXPORT_KERNELS(NAME, FUNCTION, TABLE)                                                            \
    namespace tofSimd {                                                                                      \
    HWY_EXPORT(FUNCTION);                                                                                    \
    }                                                                                                        \
    bool NAME(int64_t target, TABLE& table) {                                                                \
        using namespace tofSimd;                                                                             \
        const auto index = hwy::Num0BitsBelowLS1Bit_Nonzero64(                                               \
            uint64_t(HWY_CHOSEN_TARGET_SHIFT((target)&HWY_TARGETS) | HWY_CHOSEN_TARGET_MASK_SCALAR));        \
        const auto add = HWY_DISPATCH_TABLE(FUNCTION)[index];                                                \
        if (add == nullptr)                                                                                  \
            return false;                                                                                    \
        add(table);                                                                                          \
        return true;                                                                                         \
    }
