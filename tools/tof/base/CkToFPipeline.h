#pragma once

#include "plugins/zplToF/transform/CkToFTransformer.h"

#include <QString>

#include <memory>
#include <optional>

/// Applies one ToF transform to the frames of a group, one object for each group: CkToFTransformer with this
/// program's error texts, prepared again when the format of the frames changes. One thread at a time.
class CkToFPipeline {
public:
    /// iTransform: a ToFTransform::EkTransformType.
    explicit CkToFPipeline(int iTransform);

    enum class EkResult {
        Frame,     ///< a frame came out
        Waiting,   ///< the set is not complete yet
        Impossible ///< the transform cannot process this frame
    };
    /// sReason is set for Impossible.
    EkResult process(const CkImageData& data, std::unique_ptr<CkImageData>& result, QString& sReason);

    /// What the incomplete set lacks: a predicate for a sentence with the set as subject.
    QString missingImages() const;

private:
    QString missingAngle() const;

    int m_transform;
    std::optional<SkPicBufInfo> m_prepared; ///< the format the transformer is prepared for
    CkToFTransformer m_transformer;
};
