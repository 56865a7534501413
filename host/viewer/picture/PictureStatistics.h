#pragma once

#include "zuCore/SkPicBuf.h"

#include <array>

/// Value range and histogram of one channel.
struct SkPictureStatistics {
    static constexpr int kBins = 256;

    double minimum = 0.0; ///< smallest finite value
    double maximum = 0.0; ///< largest finite value
    quint64 finite = 0;
    quint64 notFinite = 0;
    /// Bins of equal width over [minimum, maximum]; of large pictures only every n-th row is counted.
    std::array<quint32, kBins> histogram{};

    /// The value below which this share (0 to 1) of the pixels lies, accurate to one bin.
    double quantile(double share) const;
};

/// False, with statistics empty, for a picture that cannot be read or has no such channel. A picture without
/// any finite value has both limits 0. Any thread.
bool computeStatistics(const SkPicBuf& picBuf, quint32 channel, SkPictureStatistics& statistics);
