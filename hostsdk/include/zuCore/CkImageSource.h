#pragma once

#include "zuCore/CkImageProvider.h"

class CkImageData;

/// First block of a chain: frames enter here. A source never blocks its producer: frames that the chain
/// cannot accept in time are dropped and counted (CkChain::blockStatistics).
class ZUCORE_EXPORT CkImageSource : public CkImageProvider {
    Q_OBJECT

public:
    explicit CkImageSource(QObject* pParent = nullptr); ///< In no chain yet.
    ~CkImageSource() override;

    /// A source is a first block (true for null) and has no input (false for everything else).
    bool acceptsDataFrom(CkChainable* pUpstream) override;
    bool inputImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) const override;
    /// The same as sourceImageInfo, also while the chain runs: code that has just configured a camera gets
    /// the format of the frames to come, not the one negotiated last.
    bool outputImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) override;

    /// The format of the frames to come. False when unknown. Any thread.
    virtual bool sourceImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) const = 0;

    /// Cameras of this source, empty for none.
    virtual QList<void*> cameraHandles() const;

protected:
    /// Delivers a frame to the chain and takes ownership of it. False when it was dropped: no chain, chain
    /// stopped, or chain still busy with earlier frames. Any thread.
    bool deliver(CkImageData* pData);

    /// Events of a frame that deliver() accepted: Entered and later Done, or Dropped.
    enum class EkFrameEvent {
        Entered, ///< it leaves the source; sinks and blocks get it now
        Dropped, ///< it did not fit the chain, or the chain stopped before it entered
        Done     ///< all blocks and sinks have handled it
    };
    /// Called once for each event, in the order of delivery, on the chain's thread or on the one that stops
    /// the chain. Must return quickly, because the chain waits. No-op by default.
    virtual void frameEvent(EkFrameEvent event);

    /// Counts frames that were lost before they reached the source as dropped, unless the chain is stopped.
    /// Any thread.
    void reportLost(quint64 uiFrames);

private:
    friend class CkChain;
    friend class CkChainRunner;
};
