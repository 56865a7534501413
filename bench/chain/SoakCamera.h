#pragma once

#include "tests/support/FakeVideoSource.h"

#include <mutex>

/// A camera that switches its readout between frames. Counts as a recording for the block, so that separate
/// phases are gathered.
class SoakCamera : public CkVideoSource {
public:
    /// Kinds of readout; the name of each is in the metadata of its frames.
    enum Readout {
        AandB4,
        AandB2,
        AandBSeparate,
        AminusB4,
        Hybrid,
        HybridSections,
        HybridReference, ///< a reference and three exposures, one image each
        Grey,
        ReadoutCount
    };

    /// Descriptor and metadata of a readout.
    static void describe(Readout readout, SkPicBufInfo& info, CkImageMetadata& metadata);

    /// Readout of the following frames.
    void setReadout(Readout readout);
    /// The next frame; only its first row is set.
    std::unique_ptr<CkImageData> nextFrame();

    bool sourceImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) const override;

private:
    mutable std::mutex m_mutex;
    Readout m_readout = AandB4;
    quint64 m_uiFrame = 0;
};
