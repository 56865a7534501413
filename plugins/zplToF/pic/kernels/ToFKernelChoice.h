#pragma once

#include "plugins/zplToF/pic/kernels/SkToFKernels.h"

#include <vector>

/// Which implementation of the row kernels runs. Any thread.
///
/// The fastest one the processor can run is taken, unless the environment variable ZU_TOF_KERNELS names
/// another when the first picture is processed: "plain", or the name of an available instruction set. Names
/// that are not available are passed over.
namespace ToFKernelChoice {

/// The implementation that the picture operations use.
const SkToFKernels& active();
/// Takes another implementation from now on, which must live on; null returns to the automatic choice.
void pin(const SkToFKernels* pKernels);
/// The portable loops that define every result.
const SkToFKernels& plain();
/// Everything that can run here: plain first, then from the narrowest vectors to the widest.
const std::vector<const SkToFKernels*>& available();
/// The one with this name, or null.
const SkToFKernels* find(const char* sName);

} // namespace ToFKernelChoice
