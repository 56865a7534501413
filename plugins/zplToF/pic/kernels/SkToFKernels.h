#pragma once

#include <QtGlobal>

#include <cstddef>
#include <limits>

/// Statistics of a float picture, accumulated while its rows are written.
struct SkToFRowStats {
    float fWorst = 0.0F; ///< largest confidence, at least 0
    float fMinimum = std::numeric_limits<float>::infinity();
    float fMaximum = -std::numeric_limits<float>::infinity();
    bool bDark = false; ///< some confidence is exactly 0
};

/// The same row of all exposure sections of a picture.
struct SkToFSectionRows {
    const quint8* first; ///< of the least sensitive section
    size_t stride;       ///< bytes from one section to the next
    quint32 count;       ///< sections, at least 2
    quint16 threshold;   ///< the smallest sample that counts as saturated

    const quint8* row(quint32 section) const { return first + section * stride; }
};

/// One implementation of every row kernel. Immutable; kernels may run on many threads.
///
/// Rows are byte pointers of any alignment. Kernels read exactly the samples of uiPixels pixels and write
/// exactly the result samples of uiPixels pixels. Arrays of rows hold one pointer per phase, in the order of
/// the nominal angles. The first index of an array of kernels is the sample width (0: 8-bit, 1: 16-bit,
/// 2: 32-bit), the second the phases (0: 1, 1: 2, 2: 4, 3: 8 phases).
struct SkToFKernels {
    using StackedRow = void (*)(const quint8* const* pRows, quint8* pResult, size_t uiPixels);
    using StackedFloatRow = void (*)(const quint8* const* pRows, quint8* pResult, size_t uiPixels,
                                     SkToFRowStats& stats);
    using SingleRow = void (*)(const quint8* pSource, quint8* pResult, size_t uiPixels);
    using ShiftedRow = void (*)(const quint8* pSource, quint8* pResult, size_t uiPixels, int iShift);
    using DepthRow = void (*)(const quint8* pSource, quint8* pResult, size_t uiPixels, double fRange);
    using SectionRow = void (*)(const SkToFSectionRows& sections, quint8* pResult, size_t uiPixels,
                                quint32& uiUsedBits);
    using FillRow = void (*)(quint8* pResult, size_t uiPixels, float fWorst);
    using DepthSearchRow = float (*)(const quint8* pDepth, const quint8* pConfidence, size_t uiPixels,
                                     float fLimit, float fMaximum);

    const char* sName; ///< "plain", or the name of the instruction set

    StackedFloatRow phaseConfidence[2][4]; ///< two taps to phase shift and confidence
    StackedFloatRow phase[2][4];           ///< signed differences to phase shift
    FillRow fillDark;                      ///< confidences that are exactly 0 become fWorst
    StackedRow angle;                      ///< rows of float x and y to phase shift, for any vector
    bool bTracksRange;                     ///< kernels report the value range and the bits in use

    StackedRow intensity[2][4];
    StackedRow amplitude[2][4]; ///< from two taps
    StackedRow amplitudeOfDifference[2][4];
    SingleRow difference[2]; ///< A - B

    /// Source width, result width; null where the pair is not supported.
    ShiftedRow hybridIntensity[3][3];
    ShiftedRow hybridAmplitude[3][3];
    DepthRow hybridDepth[3];
    SectionRow mergeSections[2][3]; ///< with bTracksRange: adds the bits in use to uiUsedBits
    StackedRow interleaveThree[2];

    /// The largest depth with a confidence in (0, fLimit], or fMaximum if that is larger.
    DepthSearchRow largestDepthOfPairs; ///< depth and confidence interleaved, pConfidence unused
    DepthSearchRow largestDepth;
};
