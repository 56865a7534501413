#pragma once

#include "plugins/zplToF/cloud/CkToFDepthFrame.h"

#include <gtest/gtest.h>

inline void expectEmpty(const CkToFDepthFrame& frame) {
    EXPECT_TRUE(frame.isEmpty());
    EXPECT_EQ(frame.depthPic().data, nullptr);
    EXPECT_EQ(frame.confidencePic().data, nullptr);
    EXPECT_EQ(frame.depthPic().channels, 1U);
    EXPECT_EQ(frame.depthPic().bitsPerChannel, 8U);
    EXPECT_EQ(frame.depthDataKind(), EkDepthDataType::Generic);
    EXPECT_EQ(frame.resolutionRatio(), 1.0F);
}
