#pragma once

#include "host/core/SkFormat.h"

#include <QtGlobal>

/// Keeps a chain from setting itself up again with every frame. Counts in frames; chain thread.
///
/// A refit, without which a frame cannot be processed, is granted to a block with every second frame at most,
/// so that of two consecutive frames one is processed. The delay of optional requests doubles each time they
/// are repeated.
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
