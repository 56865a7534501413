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

    /// What the block makes of an input format. outMeta may be null; inMeta too. The base copies both
    /// through. Called at set-up by the thread that starts the chain, and by the block while frames flow;
    /// never at the same time. False: the block cannot work on this input; its error message says why.
    virtual bool queryOutputImageInfo(const SkPicBufInfo& in, SkPicBufInfo& out,
                                      const CkImageMetadata* pInMeta, CkImageMetadata* pOutMeta);

    /// The format the block is fed with: the output format of its first predecessor. False when unknown.
    /// Any thread.
    virtual bool inputImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) const;

    /// The format the block delivers: while the chain runs the one negotiated last; in a stopped chain it
    /// is negotiated now from the sources down. False when unknown. pMetadata may be null. Any thread but
    /// the chain's own.
    virtual bool outputImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata);
};
