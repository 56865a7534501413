#pragma once

#include "plugins/zplToF/pic/kernels/SkToFKernels.h"

#include <cstdint>

// Below SSE4 the portable loops are faster than the vector code, and newer instruction sets offer nothing
// that these kernels use.
#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3_DL)

// Each fills in the kernels of one instruction set. False when it was not compiled in.
bool addSimdWaveKernels(int64_t target, SkToFKernels& kernels);
bool addSimdIntegerKernels(int64_t target, SkToFKernels& kernels);
bool addSimdHybridKernels(int64_t target, SkToFKernels& kernels);

/// Defines bool NAME(int64_t target, TABLE& table), which calls FUNCTION of the target: it is compiled once
/// for each instruction set, and Highway keeps a null entry for a set that was not compiled in.
// NOLINTBEGIN(bugprone-macro-parentheses): a type must not stand in parentheses.
#define TOF_EXPORT_KERNELS(NAME, FUNCTION, TABLE)                                                            \
    namespace tofSimd {                                                                                      \
    HWY_EXPORT(FUNCTION);                                                                                    \
    }                                                                                                        \
    bool NAME(int64_t target, TABLE& table) {                                                                \
        using namespace tofSimd;                                                                             \
        const auto index = hwy::Num0BitsBelowLS1Bit_Nonzero64(                                               \
            uint64_t(HWY_CHOSEN_TARGET_SHIFT((target)&HWY_TARGETS) | HWY_CHOSEN_TARGET_MASK_SCALAR));        \
        const auto add = HWY_DISPATCH_TABLE(FUNCTION)[index];                                                \
        if (add == nullptr) {                                                                                \
            return false;                                                                                    \
        }                                                                                                    \
        add(table);                                                                                          \
        return true;                                                                                         \
    }
// NOLINTEND(bugprone-macro-parentheses)
