#pragma once

#include "plugins/zplToF/transform/CkToFFrameInput.h"
#include "plugins/zplToF/transform/CkToFFrameProcessor.h"

#include <functional>
#include <memory>

class CkImageData;

/// What comes out of a transform, see ToFNegotiation::negotiate.
struct SkToFFormat {
    SkPicBufInfo info;
    CkImageMetadata metadata;
};

/// The whole path of a frame: subtracts a reference section, gathers the images of a set, merges exposure
/// sections and applies a transform. Knows neither chain nor window; one thread at a time. Apart from the
/// picture of a result, nothing is allocated for frames of the format it was prepared for.
class CkToFTransformer {
public:
    /// Provides the picture of a result, zeroed when bClear is set. False when none is available.
    using PictureSource = std::function<bool(const SkPicBufInfo& info, bool bClear, CkPicture& picture)>;

    enum class EkOutcome {
        NewFrame,  ///< SkResult::frame
        SameFrame, ///< the frame passes through as it is
        Waiting,   ///< no output yet: a reference section, or an image of a set that is incomplete
        Refused,   ///< no output, see SkResult::refusal
        NoPicture  ///< no output: the picture source had none
    };

    struct SkResult {
        EkOutcome outcome = EkOutcome::Waiting;
        std::unique_ptr<CkImageData> frame; ///< of NewFrame; null otherwise
        EkFrameRefusal refusal = EkFrameRefusal::None;
        /// Why the angles of the set do not fit the transform, untranslated (context CkToFProcessCnbl); null
        /// when they do. The set is still processed, in its nominal order.
        const char* angleError = nullptr;
    };

    /// Drops every frame and frees all buffers. bGathers: images of a set that arrive one by one are
    /// gathered; otherwise each is processed by itself.
    void reset(bool bGathers);
    /// Drops every frame and frees all buffers.
    void clear();

    /// Allocates the buffers for frames of a format and drops the images gathered so far. The refusal is the
    /// one that every set will get, or None.
    EkFrameRefusal prepare(const SkPicBufInfo& in, const CkImageMetadata& metadata);

    /// Applies a transform (ToFTransform::EkTransformType, any number is allowed) to a frame with pixels.
    /// out: the format negotiated for this very frame.
    SkResult process(int iTransform, const CkImageData& data, const SkToFFormat& out,
                     const PictureSource& pictureSource);

    /// Angles of the images gathered so far, in degrees; CkToFPhaseCollector::kMissingAngle for those that
    /// have not arrived.
    const CkToFPicAPI::AngleList& angles() const { return m_input.angles(); }

    /// Why a transform that depends on angles cannot use those seen so far, as SkResult::angleError.
    const char* angleError(int iTransform) const;

private:
    void makeFrame(const SkToFTransform& transform, const SkToFFrame& frame, const SkToFFormat& out,
                   const PictureSource& pictureSource, SkResult& result);

    CkToFFrameInput m_input;
    CkToFFrameProcessor m_processor;
    bool m_gathers = false;
};
