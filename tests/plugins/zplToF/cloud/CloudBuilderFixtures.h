#pragma once

#include "tests/plugins/zplToF/cloud/CloudRig.h"

#include <gtest/gtest.h>
#include <string>

/// Millimetres of a radian and of the whole range at 30 MHz, on paper: 299.70254 / (2 * 30) m = 4.995042 m.
inline constexpr float RangeMM = 4995.0424F;
inline constexpr float MMPerRadian = RangeMM / 6.2831855F;

/// Depth data of one value with the lens model on.
class Lens : public testing::TestWithParam<bool> {
protected:
    Lens() : parameters(testParameters(true)) {
        builder.setPlainLoop(GetParam());
        parameters.opticalPath.realDistanceOffsetM = 0.0F;
        parameters.opticalPath.orthoRadialCorrection = false;
    }

    /// The export point of the only pixel in the middle column of a 2 x 1 picture (x = cx), or none.
    bool build(float value, EkDepthDataType kind) {
        fillFloats(depth, [&](quint32, quint32) { return value; });
        return builder.build({*depth, {}, kind, 1.0F}, parameters);
    }

    TestPicture depth{2, 1, 1, EkImageDataType::Float32};
    SkToFCloudParameters parameters;
    CkToFCloudBuilder builder;
};

/// Depth data without the lens model.
class Normalised : public testing::TestWithParam<bool> {
protected:
    Normalised() { builder.setPlainLoop(GetParam()); }
    CkToFCloudBuilder builder;
};

inline std::string loopName(const testing::TestParamInfo<bool>& info) {
    return info.param ? "Plain" : "Vectors";
}
