#pragma once

#include "plugins/zplToF/transform/CkToFFrameInput.h"
#include "plugins/zplToF/transform/CkToFFrameProcessor.h"

#include <QString>

#include <memory>

class CkImageData;

/// Applies one ToF transform to the frames of a group, as the processing block of a chain does. One thread at
/// a time; one object a group.
class CkToFPipeline {
public:
    /// iTransform: a ToFTransform::EkTransformType.
    explicit CkToFPipeline(int iTransform) : m_iTransform(iTransform) {}

    enum class EkResult {
        Frame,     ///< a frame came out
        Waiting,   ///< the set is not complete yet
        Impossible ///< the transform makes nothing of this frame
    };
    /// sReason is set when nothing can come out.
    EkResult process(const CkImageData& data, std::unique_ptr<CkImageData>& result, QString& sReason);

    /// What the set lacks that was waited for last, as the rest of a sentence that begins with the set.
    QString missingImages() const;

private:
    void prepare(const SkPicBufInfo& in, const CkImageMetadata& metadata);
    bool hasAllAngles(QString& sReason) const;

    int m_iTransform;
    bool m_bPrepared = false;
    SkPicBufInfo m_prepared;
    CkToFFrameInput m_input;
    CkToFFrameProcessor m_processor;
};
