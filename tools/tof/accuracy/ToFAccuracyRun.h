#pragma once

#include "tools/tof/accuracy/SkToFAccuracy.h"

/// Measures one cell: a simulated camera looks at a wall at a known distance, its raw pictures are processed
/// as in the plug-in (processing block, then distances and confidence filter of the point cloud) and compared
/// with the truth pixel by pixel. The result depends on the arguments alone. Any thread.
SkToFAccuracyResult measureAccuracy(const SkToFAccuracyPoint& point, const SkToFAccuracySetup& setup);
