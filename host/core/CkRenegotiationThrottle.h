#pragma once

#include "SkFormat.h"

#include <QtGlobal>

/// Keeps a chain from setting itself up anew with every frame. Counts in frames; chain thread.
///
/// What a frame needs to be worked on is granted to a block at most with every second frame, so that of two
/// frames in a row one gets through. Wishes that frames can do without wait ever longer, up to 64 frames,
/// while they come again and again.
class CkRenegotiationThrottle {
public:
    void reset(); ///< before a run
    void beginFrame() { ++m_uiFrame; }
    quint64 frame() const { return m_uiFrame; } ///< counts from 1

    /// uiLast: the frame for which the same block was last granted it, 0 for none.
    bool isGranted(quint64 uiLast) const { return uiLast == 0 || m_uiFrame >= uiLast + 2; }
    bool isWishGranted() const { return m_uiFrame >= m_uiNextWish; }

    /// A wish was served, and this came of it.
    void served(EkFormatChange change);

private:
    quint64 m_uiFrame = 0;
    quint64 m_uiNextWish = 0;
    quint32 m_uiDoublings = 0;
};
