#include "plugins/zplToF/pic/kernels/SimdKernels.h"

#include "plugins/zplToF/pic/kernels/PlainKernels.h"
#include "plugins/zplToF/pic/kernels/SimdTables.h"

std::vector<const SkToFKernels*> simdKernels() {
    static const CkToFSimdTables<SkToFKernels> tables(
        plainKernels(), [](int64_t target, SkToFKernels& kernels) {
            return addSimdWaveKernels(target, kernels) && addSimdIntegerKernels(target, kernels) &&
                   addSimdHybridKernels(target, kernels);
        });
    return tables.usable();
}
