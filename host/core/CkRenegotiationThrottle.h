#pragma once

#include "host/core/SkFormat.h"

#include <QtGlobal>

/// Limits how often a chain is set up again. Counts in frames; chain thread.
///
/// Optional requests back off exponentially: each one that is granted doubles the delay before the next. A
/// refit, without which a frame would be dropped, is granted to a block for every second frame at most, so
/// that one of two consecutive frames is processed.
class CkRenegotiationThrottle {
public:
    enum class EkRequest {
        Block, ///< a block requests it, or might succeed now; delayed by 64 frames at most
        Values ///< only metadata changed; setting up again would lose a set that is being gathered
    };

    void reset(); ///< before a run
    void beginFrame() { ++m_frame; }
    quint64 frame() const { return m_frame; } ///< counts from 1

    /// uiLast: the frame for which the same block was last granted it, 0 for none.
    bool isRefitGranted(quint64 uiLast) const { return uiLast == 0 || m_frame >= uiLast + 2; }

    bool isGranted(EkRequest request) const { return m_frame >= backOff(request).uiNext; }
    /// To be called after a granted request, with the resulting change.
    void served(EkRequest request, EkFormatChange change);

private:
    /// Exponential back-off of the requests of one kind.
    struct SkBackOff {
        quint64 uiNext = 0; ///< first frame for which they are granted
        quint32 uiDoublings = 0;
    };
    const SkBackOff& backOff(EkRequest request) const {
        return request == EkRequest::Block ? m_block : m_values;
    }

    quint64 m_frame = 0;
    SkBackOff m_block;
    SkBackOff m_values;
};
