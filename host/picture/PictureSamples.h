#pragma once

#include "zuCore/SkPicBuf.h"

/// Statistics of samples, and changes of samples in place. Documented in CkPicBufAPI.h.
namespace PictureSamples {

/// CkPicBufAPI::CalcFloatDataMinMax
bool valueRange(const SkPicBuf& picBuf, float& fMin, float& fMax, bool bFirstChannelOnly);
/// CkPicBufAPI::DetectColorBitDepth
bool bitDepth(const SkPicBuf& picBuf, quint32& uiBits, bool bFirstChannelOnly);
/// CkPicBufAPI::ShiftBits
bool shiftBits(SkPicBuf& picBuf, int iShift, bool bUpdateBits);
/// CkPicBufAPI::Subtract
bool subtract(SkPicBuf& picBuf, const SkPicBuf& subtrahend);

} // namespace PictureSamples
