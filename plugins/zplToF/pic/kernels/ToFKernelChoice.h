#pragma once

#include "plugins/zplToF/pic/kernels/SkToFKernels.h"

#include <vector>

/// Selects the implementation of the row kernels. Any thread.
///
/// This is the fastest one that the processor can run, unless the environment variable ZU_TOF_KERNELS names
/// another one when the first picture is processed: "plain", or an available instruction set. Other names are
/// ignored.
namespace ToFKernelChoice {

/// The implementation that the picture operations use.
const SkToFKernels& active();
/// Pins an implementation, which must outlive its use; null returns to the automatic choice.
void pin(const SkToFKernels* pKernels);
/// The portable loops that define every result.
const SkToFKernels& plain();
/// All implementations this processor can run: plain first, then from the narrowest vectors to the widest.
const std::vector<const SkToFKernels*>& available();
/// The implementation with this name, or null.
const SkToFKernels* find(const char* sName);

} // namespace ToFKernelChoice
