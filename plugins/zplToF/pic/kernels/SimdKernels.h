#pragma once

#include "plugins/zplToF/pic/kernels/SkToFKernels.h"

#include <vector>

/// The vector implementations this processor can run, from the narrowest vectors to the widest; empty when
/// it supports none.
std::vector<const SkToFKernels*> simdKernels();
