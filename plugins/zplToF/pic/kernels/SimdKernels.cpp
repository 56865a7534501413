#include "plugins/zplToF/pic/kernels/SimdKernels.h"

#include "plugins/zplToF/pic/kernels/PlainKernels.h"
#include "plugins/zplToF/pic/kernels/SimdTargets.h"

#include <hwy/highway.h>

#include <array>

namespace {

constexpr int64_t targets[] = {HWY_SSE4, HWY_AVX2, HWY_AVX3};

struct Built {
    std::array<SkToFKernels, std::size(targets)> kernels{};
    std::vector<const SkToFKernels*> usable;

    Built() {
        const int64_t supported = hwy::SupportedTargets();
        for (size_t index = 0; index < std::size(targets); ++index) {
            SkToFKernels& entry = kernels[index];
            // What an instruction set has no kernel for stays the plain loop.
            entry = plainKernels();
            entry.sName = hwy::TargetName(targets[index]);
            if ((supported & targets[index]) != 0 && addSimdWaveKernels(targets[index], entry) &&
                addSimdIntegerKernels(targets[index], entry) && addSimdHybridKernels(targets[index], entry)) {
                usable.push_back(&entry);
            }
        }
    }
};

} // namespace

std::vector<const SkToFKernels*> simdKernels() {
    static const Built built;
    return built.usable;
}
