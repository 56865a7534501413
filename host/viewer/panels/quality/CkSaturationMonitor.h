#pragma once

#include "zuCore/CkChain.h"

#include <QPointer>
#include <QRect>
#include <QSize>

#include <deque>
#include <mutex>
#include <vector>

/// Records which pixels of a source's pictures were saturated, for the pictures that are computed from them.
/// Set up and queried on the user-interface thread, fed on a thread of the chain.
class CkSaturationMonitor : public IkFrameSink {
public:
    enum class EkAnswer : int {
        Known,
        Missed,       ///< the source's picture was not recorded
        Unrelated,    ///< the pixels do not belong to pixels of the source's picture
        Difference,   ///< the source delivers A minus B
        Undetermined, ///< the source's samples do not show it
    };

    CkSaturationMonitor() = default;
    ~CkSaturationMonitor() override;

    /// Records the pictures of this source from now on; null: of none. No-op for the current source.
    void watch(CkChainable* pSource);

    /// Which pixels in a region of a computed picture were saturated in the pictures it was computed from,
    /// row by row. size: of the computed picture. saturated is filled for Known only.
    EkAnswer saturated(quint64 uiFrameNumber, const QSize& size, const QRect& region,
                       std::vector<bool>& saturated) const;

    int takeFrame(CkImageData* pData) override;
    int heldFrames() const override { return 1; }

private:
    /// Saturation in the pictures from which one picture is computed.
    struct SkSet {
        quint64 frameNumber = 0;
        EkAnswer answer = EkAnswer::Known;
        QSize size;
        bool onlyTopCounts = false; ///< exposures from the least to the most sensitive: only the first counts
        std::vector<quint8> pixels; ///< row by row; not 0: saturated
    };

    void add(const CkImageData& frame);

    QPointer<CkChain> m_chain;
    QPointer<CkChainable> m_source;
    mutable std::mutex m_mutex;
    std::deque<SkSet> m_sets; ///< the newest last
};
