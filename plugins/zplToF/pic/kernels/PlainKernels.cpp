#include "plugins/zplToF/pic/kernels/PlainKernels.h"

SkToFKernels plainKernels() {
    SkToFKernels kernels{};
    kernels.sName = "plain";
    addPlainWaveKernels(kernels);
    addPlainHybridKernels(kernels);
    return kernels;
}
