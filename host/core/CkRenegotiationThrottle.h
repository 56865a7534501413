#pragma once

#include "host/core/SkFormat.h"

#include <QtGlobal>

/// Keeps a chain from setting itself up anew with every frame. Counts in frames; chain thread.
///
/// What a frame needs to be worked on is granted to a block at most with every second frame, so that of two
/// frames in a row one gets through. Wishes that frames can do without wait twice as long each time while
/// they come again and again.
class CkRenegotiationThrottle {
public:
    enum class EkWish {
        Block, ///< a block asks, or might work now; waits 64 frames at most
        Values ///< metadata are others; every set that is being gathered would be lost to it
    };

    void reset(); ///< before a run
    void beginFrame() { ++m_uiFrame; }
    quint64 frame() const { return m_uiFrame; } ///< counts from 1

    /// uiLast: the frame for which the same block was last granted it, 0 for none.
    bool isNeedGranted(quint64 uiLast) const { return uiLast == 0 || m_uiFrame >= uiLast + 2; }

    bool isWishGranted(EkWish wish) const { return m_uiFrame >= wishes(wish).uiNext; }
    /// This came of a wish that was granted.
    void served(EkWish wish, EkFormatChange change);

private:
    struct SkWishes {
        quint64 uiNext = 0; ///< frame from which on they are granted
        quint32 uiDoublings = 0;
    };
    const SkWishes& wishes(EkWish wish) const { return wish == EkWish::Block ? m_block : m_values; }

    quint64 m_uiFrame = 0;
    SkWishes m_block;
    SkWishes m_values;
};
