#include "tests/plugins/zplToF/pic/picTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>

// The phase angle of every implementation against atan2f, with the wrap to [0, 2 pi).

namespace {

float wrappedAngle(float y, float x) {
    const float angle = std::atan2(y, x);
    return angle < 0.0F ? angle + 6.2831855F : angle;
}

class Arctangent : public ::testing::TestWithParam<const SkToFKernels*> {
protected:
    void add(float x, float y) {
        xs.push_back(x);
        ys.push_back(y);
    }
    void check() {
        std::vector<float> angles(xs.size());
        const quint8* const rows[] = {reinterpret_cast<const quint8*>(xs.data()),
                                      reinterpret_cast<const quint8*>(ys.data())};
        GetParam()->angle(rows, reinterpret_cast<quint8*>(angles.data()), angles.size());
        qint64 worst = 0;
        for (size_t index = 0; index < angles.size(); ++index) {
            const qint64 distance = ulpDistance(angles[index], wrappedAngle(ys[index], xs[index]));
            ASSERT_LE(distance, 2) << "y " << ys[index] << " x " << xs[index];
            ASSERT_GE(angles[index], 0.0F);
            ASSERT_LE(angles[index], 6.2831855F);
            worst = std::max(worst, distance);
        }
        RecordProperty("worstUlp", int(worst));
        xs.clear();
        ys.clear();
    }
    std::vector<float> xs;
    std::vector<float> ys;
};

INSTANTIATE_TEST_SUITE_P(Kernels, Arctangent, ::testing::ValuesIn(ToFKernelChoice::available()),
                         [](const auto& instance) { return std::string(instance.param->sName); });

TEST_P(Arctangent, FullGridOfSmallIntegers) {
    for (int y = -512; y < 512; ++y) {
        for (int x = -512; x < 512; ++x) {
            add(float(x), float(y));
        }
    }
    check();
}

TEST_P(Arctangent, RandomIntegersOfTheWholeRange) {
    std::mt19937 random(42);
    for (int count = 0; count < 2000000; ++count) {
        add(float(int(random() % 262141) - 131070), float(int(random() % 262141) - 131070));
    }
    check();
}

TEST_P(Arctangent, AxesDiagonalsAndExtremeRatios) {
    for (const float length : {1.0F, 2.0F, 3.0F, 255.0F, 4095.0F, 65535.0F, 131070.0F, 342500.0F, 1e-6F}) {
        for (const float other : {0.0F, 1.0F, -1.0F, 0.0078125F, length, -length, 131070.0F, -342500.0F}) {
            add(length, other);
            add(-length, other);
            add(other, length);
            add(other, -length);
        }
    }
    check();
}

TEST_P(Arctangent, BothSignsOfZero) {
    for (const float x : {0.0F, -0.0F, 5.0F, -5.0F}) {
        for (const float y : {0.0F, -0.0F, 5.0F, -5.0F}) {
            // The sign of a zero does not matter in a phase shift.
            add(x, y);
        }
    }
    check();
}

TEST_P(Arctangent, NonIntegerVectorsOfEightPhases) {
    std::mt19937 random(43);
    const auto component = [&random] {
        const auto whole = [&random] { return float(int(random() % 8191) - 4095); };
        return whole() + whole() * 0.70710677F;
    };
    for (int count = 0; count < 1000000; ++count) {
        add(component(), component());
    }
    check();
}

TEST_P(Arctangent, VectorsCloseToTheAxesAndDiagonals) {
    for (int large = 1; large <= 131070; large += 37) {
        for (int small = 0; small <= 3; ++small) {
            for (const int sign : {1, -1}) {
                add(float(sign * large), float(small));
                add(float(large), float(-sign * small));
                add(float(small), float(sign * large));
                add(float(large), float(sign * (large - small)));
                add(float(-large), float(sign * (large + small)));
            }
        }
    }
    check();
}

} // namespace
