#pragma once

#include "pic/kernels/SkToFKernels.h"

#include <cstdint>

// The portable loops serve processors without SSE4 better than narrower vectors would, and the newest
// instruction sets have nothing that these kernels need.
#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3_DL)

// Each enters the kernels of one instruction set and says whether it was built in.
bool addSimdWaveKernels(int64_t target, SkToFKernels& kernels);
bool addSimdIntegerKernels(int64_t target, SkToFKernels& kernels);
bool addSimdHybridKernels(int64_t target, SkToFKernels& kernels);

/// Picks the entry of one instruction set from a dispatch table of Highway, or null.
#define TOF_TARGET_ENTRY(FUNCTION, TARGET)                                                                   \
    HWY_DISPATCH_TABLE(FUNCTION)                                                                             \
    [hwy::Num0BitsBelowLS1Bit_Nonzero64(                                                                     \
        uint64_t(HWY_CHOSEN_TARGET_SHIFT((TARGET)&HWY_TARGETS) | HWY_CHOSEN_TARGET_MASK_SCALAR))]
