#pragma once

#include "tools/tof/accuracy/SkToFAccuracy.h"

/// Lets the simulated camera look at a wall of known distance, processes its raw pictures as the plug-in does
/// (processing block, then the distances and the confidence filter of the point cloud) and compares with the
/// truth, pixel by pixel. The result depends on the arguments alone: every cell has a noise of its own. Any
/// thread.
SkToFAccuracyResult measureAccuracy(const SkToFAccuracyPoint& point, const SkToFAccuracySetup& setup);
