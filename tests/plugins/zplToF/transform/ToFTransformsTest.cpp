#include "plugins/zplToF/transform/ToFTransforms.h"

#include <gtest/gtest.h>
#include <set>

namespace {

using EkInput = SkToFTransform::EkInput;

TEST(ToFTransforms, TheNumberOfATransformIsItsPlaceInTheTable) {
    ASSERT_EQ(ToFTransforms::all().size(), 7U);
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(ToFTransforms::all()[size_t(i)].type, i);
        EXPECT_EQ(ToFTransforms::find(i), &ToFTransforms::all()[size_t(i)]);
    }
    for (int number : {-1, 7, 1000, -2147483647}) {
        EXPECT_EQ(ToFTransforms::find(number), nullptr) << number;
    }
}

TEST(ToFTransforms, TitlesAndNamesAreThoseOfChainsAndCommandLines) {
    const char* const titles[] = {"SetABPhase",    "Intensity",    "Amplitude", "Depth",
                                  "Concat phases", "AandBtoAminB", "SetHybrid"};
    const char* const names[] = {"ab", "intensity", "amplitude", "depth", "concat", "aminb", "hybrid"};
    for (const SkToFTransform& row : ToFTransforms::all()) {
        EXPECT_EQ(row.title, QLatin1String(titles[row.type]));
        EXPECT_EQ(row.name, QLatin1String(names[row.type]));
    }
}

TEST(ToFTransforms, WhatEachTransformReads) {
    const EkInput inputs[] = {EkInput::Frame, EkInput::Phases, EkInput::Phases, EkInput::Phases,
                              EkInput::Set,   EkInput::Frame,  EkInput::Frame};
    for (const SkToFTransform& row : ToFTransforms::all()) {
        EXPECT_EQ(row.input, inputs[row.type]) << row.type;
        EXPECT_EQ(row.gathers, row.type != ToFTransform::AandBtoAminB) << row.type;
        EXPECT_EQ(row.needsAngles, row.type == ToFTransform::Amplitude || row.type == ToFTransform::Depth)
            << row.type;
    }
}

TEST(ToFTransforms, EveryTransformHasRulesAndAnOperationOfItsOwn) {
    std::set<const void*> functions;
    for (const SkToFTransform& row : ToFTransforms::all()) {
        functions.insert(reinterpret_cast<const void*>(row.negotiate));
        functions.insert(reinterpret_cast<const void*>(row.compute));
    }
    EXPECT_EQ(functions.size(), 14U);
    EXPECT_EQ(functions.count(nullptr), 0U);
}

} // namespace
