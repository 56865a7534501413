#include "plugins/zplToF/pic/kernels/ToFKernelChoice.h"

#include "plugins/zplToF/pic/kernels/PlainKernels.h"
#include "plugins/zplToF/pic/kernels/SimdKernels.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

namespace {

std::atomic<const SkToFKernels*> pinnedKernels{nullptr};

const SkToFKernels* automaticChoice() {
    if (const char* wanted = std::getenv("ZU_TOF_KERNELS")) {
        if (const SkToFKernels* kernels = ToFKernelChoice::find(wanted)) {
            return kernels;
        }
    }
    return ToFKernelChoice::available().back();
}

} // namespace

const SkToFKernels& ToFKernelChoice::active() {
    static const SkToFKernels* const automatic = automaticChoice();
    const SkToFKernels* pinned = pinnedKernels.load(std::memory_order_acquire);
    return pinned != nullptr ? *pinned : *automatic;
}

void ToFKernelChoice::pin(const SkToFKernels* pKernels) {
    pinnedKernels.store(pKernels, std::memory_order_release);
}

const SkToFKernels& ToFKernelChoice::plain() {
    static const SkToFKernels kernels = plainKernels();
    return kernels;
}

const std::vector<const SkToFKernels*>& ToFKernelChoice::available() {
    static const std::vector<const SkToFKernels*> kernels = [] {
        std::vector<const SkToFKernels*> all{&plain()};
        for (const SkToFKernels* simd : simdKernels()) {
            all.push_back(simd);
        }
        return all;
    }();
    return kernels;
}

const SkToFKernels* ToFKernelChoice::find(const char* sName) {
    for (const SkToFKernels* kernels : available()) {
        if (std::strcmp(kernels->sName, sName) == 0) {
            return kernels;
        }
    }
    return nullptr;
}
