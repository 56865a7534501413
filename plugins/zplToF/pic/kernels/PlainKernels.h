#pragma once

#include "plugins/zplToF/pic/kernels/SkToFKernels.h"

#include <cstring>

/// The portable loops. They define every result and favour readability over speed.
SkToFKernels plainKernels();

// Each file of plain loops fills in its own entries.
void addPlainWaveKernels(SkToFKernels& kernels);
void addPlainHybridKernels(SkToFKernels& kernels);

// Rows may be unaligned: samples are copied, not dereferenced.

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
