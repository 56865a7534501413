#pragma once

#include "zuCore/CkChain.h"

#include <QPointer>
#include <QRect>
#include <QSize>

#include <deque>
#include <mutex>
#include <vector>

/// Looks at the pictures of a source and remembers which pixels were saturated, for the pictures that are
/// computed of them. Watched on the user-interface thread, fed on the chain's.
class CkSaturationMonitor : public IkFrameSink {
public:
    enum class EkAnswer : int {
        Known,
        Missed,     ///< the source's picture was not seen
        Unrelated,  ///< the pixels do not belong to pixels of the source's picture
        Difference, ///< the source delivers A minus B
        Untold,     ///< the samples of the source do not tell
    };

    CkSaturationMonitor() = default;
    ~CkSaturationMonitor() override;

    /// Null: no source. Nothing happens for the source that is watched already.
    void watch(CkChainable* pSource);

    /// Which pixels of a region of a computed picture were saturated in what it was computed of, row by row.
    /// saturated is only filled when it is known.
    EkAnswer saturated(quint64 uiFrameNumber, const QSize& size, const QRect& region,
                       std::vector<bool>& saturated) const;

    int takeFrame(CkImageData* pData) override;
    int heldFrames() const override { return 1; }

private:
    /// Of all pictures of a set.
    struct SkSet {
        quint64 frameNumber = 0;
        EkAnswer answer = EkAnswer::Known;
        QSize size;
        bool onlyTopCounts = false; ///< exposures from the least to the most sensitive: the first decides
        std::vector<quint8> pixels; ///< row by row; not 0: saturated
    };

    void add(const CkImageData& frame);

    QPointer<CkChain> m_chain;
    QPointer<CkChainable> m_source;
    mutable std::mutex m_mutex;
    std::deque<SkSet> m_sets; ///< the newest last
};
