#pragma once

#include "tests/plugins/zplToF/pic/picTestSupport.h"

#include <functional>
#include <ostream>
#include <string>

/// One operation with one pair of sample types, for the tests that compare implementations.
struct PicOperation {
    std::string name;
    EkImageDataType sourceType;
    quint32 sourceChannels;
    EkImageDataType resultType;
    quint32 resultChannels;
    bool stackedPhases; ///< the source is phases times as high as the result
    bool phaseShift;    ///< channel 0 of the result is an angle
    std::function<bool(const SkPicBuf&, SkPicBuf&, int, const CkToFPicAPI::AngleList*)> run;
};

std::vector<PicOperation> everyPicOperation();

inline void PrintTo(const PicOperation& operation, std::ostream* stream) {
    *stream << operation.name;
}
