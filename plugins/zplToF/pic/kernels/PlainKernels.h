#pragma once

#include "plugins/zplToF/pic/kernels/SkToFKernels.h"

#include <cstring>

/// The portable loops: the definition of every result, readable before fast.
SkToFKernels plainKernels();

// Each file of plain loops enters its own part.
void addPlainWaveKernels(SkToFKernels& kernels);
void addPlainHybridKernels(SkToFKernels& kernels);

// Rows may start at any address, so samples are copied rather than dereferenced.

template <typename T>
inline T sampleAt(const quint8* row, size_t index) {
    T value;
    std::memcpy(&value, row + index * sizeof(T), sizeof(T));
    return value;
}

template <typename T>
inline void putSample(quint8* row, size_t index, T value) {
    std::memcpy(row + index * sizeof(T), &value, sizeof(T));
}
