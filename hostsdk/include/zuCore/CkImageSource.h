#pragma once

#include "zuCore/CkImageProvider.h"

class CkImageData;

/// First block of a chain: frames enter here. A source never blocks its producer: what the chain cannot take
/// in time is dropped and counted (CkChain::blockStatistics).
class ZUCORE_EXPORT CkImageSource : public CkImageProvider {
    Q_OBJECT

public:
    explicit CkImageSource(QObject* pParent = nullptr); ///< In no chain yet.
    ~CkImageSource() override;

    /// A source is a first block (true for null) and has no input (false for everything else).
    bool acceptsDataFrom(CkChainable* pUpstream) override;
    bool inputImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) const override;
    /// The same as sourceImageInfo, also while the chain runs: code that has just set a camera up sees what
    /// comes next, not what the chain was last set up for.
    bool outputImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) override;

    /// The format of the frames to come. False when unknown. Any thread.
    virtual bool sourceImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) const = 0;

    /// Cameras of this source, empty for none.
    virtual QList<void*> cameraHandles() const;

protected:
    /// Hands a frame to the chain and takes it over. False when it was dropped: outside a chain, chain
    /// stopped, or the chain still busy with earlier ones. Any thread.
    bool deliver(CkImageData* pData);

    /// What becomes of a frame that deliver() took: Entered and later Done, or Dropped.
    enum class EkFrameEvent {
        Entered, ///< it leaves the source; sinks and blocks get it now
        Dropped, ///< it did not fit the chain, or the chain stopped before it entered
        Done     ///< all blocks and sinks have handled it
    };
    /// Called once for each event, in the order of delivery, on the chain's thread or on the one that stops
    /// the chain. Keep it short, for the chain waits. No-op by default.
    virtual void frameEvent(EkFrameEvent event);

    /// Counts frames that were lost on their way here as dropped, unless the chain is stopped. Any thread.
    void noteLost(quint64 uiFrames);

private:
    friend class CkChain;
    friend class CkChainRunner;
};
