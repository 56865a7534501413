#pragma once

#include "zuCore/CkChainable.h"
#include "zuCore/CkImageMetadata.h"
#include "zuCore/SkPicBuf.h"

/// A block whose output is pictures.
class ZUCORE_EXPORT CkImageProvider : public CkChainable {
    Q_OBJECT

public:
    explicit CkImageProvider(int iBlockKind = 0, QObject* pParent = nullptr); ///< See CkChainable.
    ~CkImageProvider() override;

    /// The output format for an input format. inMeta and outMeta may be null. The base copies the input to
    /// the output. Called during set-up by the thread that starts the chain, and by the block while frames
    /// flow; never concurrently. False: the block cannot process this input; its error message holds the
    /// reason.
    virtual bool queryOutputImageInfo(const SkPicBufInfo& in, SkPicBufInfo& out,
                                      const CkImageMetadata* pInMeta, CkImageMetadata* pOutMeta);

    /// The input format: the output format of the first predecessor. False when unknown. Any thread.
    virtual bool inputImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) const;

    /// The output format: while the chain runs, the one negotiated last; in a stopped chain it is negotiated
    /// now, from the sources down. False when unknown. pMetadata may be null. Any thread except the chain's
    /// own.
    virtual bool outputImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata);
};
