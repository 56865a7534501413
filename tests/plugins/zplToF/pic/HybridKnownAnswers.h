#pragma once

#include "tests/plugins/zplToF/pic/picTestSupport.h"

#include <gtest/gtest.h>

/// Known answers for X1X2X3 pictures. Every expected value is computed on paper from the samples; each test
/// runs with every implementation.
class HybridKnownAnswers : public ::testing::TestWithParam<const SkToFKernels*> {
protected:
    void SetUp() override { ToFKernelChoice::pin(GetParam()); }
    void TearDown() override { ToFKernelChoice::pin(nullptr); }
};

inline constexpr EkImageDataType kUnsignedTypes[] = {EkImageDataType::UInt8, EkImageDataType::UInt16,
                                                     EkImageDataType::UInt32};

/// One pixel of the three windows.
inline void setWindows(TestPicture& picture, quint32 x, quint32 y, qint64 x1, qint64 x2, qint64 x3) {
    picture.setInteger(x, y, 0, x1);
    picture.setInteger(x, y, 1, x2);
    picture.setInteger(x, y, 2, x3);
}
