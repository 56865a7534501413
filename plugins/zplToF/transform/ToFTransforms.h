#pragma once

#include "plugins/zplToF/transform/EkTransformType.h"
#include "zuCore/SkPicBuf.h"

#include <QLatin1String>

#include <span>

class CkToFHdrBuffer;
struct SkToFFrame;
namespace ToFNegotiation {
struct SkRequest;
}

/// The properties of one transform.
struct SkToFTransform {
    enum class EkInput {
        Frame,  ///< a frame as it arrived, in a set or not
        Phases, ///< all phases, or all exposure sections, of a measurement
        Set     ///< the images of a set, which it combines; frames outside a set pass through
    };

    ToFTransform::EkTransformType type;
    QLatin1String title; ///< in the title of the processing block
    QLatin1String name;  ///< on the command line
    /// Choice in the settings of the processing block, untranslated (context CkToFProcessWidget).
    const char* choice;
    /// Converts one raw format to another. Such choices name formats and stay untranslated.
    bool isRawToRaw;
    EkInput input;
    bool gathers;     ///< images of a set that arrive one by one are gathered until it is complete
    bool needsAngles; ///< the result depends on the angles of the phases

    /// Sets the output's format. Null, or the untranslated error text (context CkToFProcessCnbl).
    const char* (*negotiate)(const ToFNegotiation::SkRequest& request);
    /// Fills a picture of that format. False: nothing useful was written.
    bool (*compute)(const SkToFFrame& frame, CkToFHdrBuffer& hdr, SkPicBuf& out);
};

/// The transforms. Immutable, any thread.
namespace ToFTransforms {

inline constexpr size_t kCount = 7;

/// In the order of ToFTransform::EkTransformType.
std::span<const SkToFTransform> all();

/// Null for a number that is not a ToFTransform::EkTransformType.
const SkToFTransform* find(int iTransform);

} // namespace ToFTransforms
