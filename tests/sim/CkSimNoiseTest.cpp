#include "sim/synth/CkSimNoise.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <vector>

namespace {

struct SkRows {
    std::vector<float> first;
    std::vector<float> second;
    std::vector<float> third;
};

SkRows draw(quint64 seed, quint64 set, quint32 exposure, quint32 row, int count) {
    SkRows rows{std::vector<float>(size_t(count)), std::vector<float>(size_t(count)),
                std::vector<float>(size_t(count))};
    CkSimNoise::fillRow<3>(CkSimNoise::rowKey(seed, set, exposure, row), count,
                           {rows.first.data(), rows.second.data(), rows.third.data()});
    return rows;
}

double correlation(const std::vector<float>& first, const std::vector<float>& second, size_t shift = 0) {
    double sum = 0.0;
    for (size_t index = 0; index + shift < first.size(); ++index) {
        sum += double(first[index]) * double(second[index + shift]);
    }
    return sum / double(first.size() - shift);
}

} // namespace

TEST(CkSimNoise, tableIsTheNormalDistribution) {
    const auto& table = CkSimNoise::quantiles();
    double sum = 0.0;
    double squares = 0.0;
    int withinOne = 0;
    int withinTwo = 0;
    for (size_t index = 0; index < table.size(); ++index) {
        const double value = double(table[index]);
        sum += value;
        squares += value * value;
        withinOne += std::abs(value) < 1.0;
        withinTwo += std::abs(value) < 2.0;
        ASSERT_TRUE(index == 0 || table[index] > table[index - 1]);
    }
    EXPECT_NEAR(sum, 0.0, 1e-3);
    EXPECT_NEAR(squares / 4096.0, 1.0, 1e-5);
    // 68.27 % and 95.45 % of a normal distribution lie within one and two standard deviations.
    EXPECT_NEAR(withinOne / 4096.0, 0.6827, 0.001);
    EXPECT_NEAR(withinTwo / 4096.0, 0.9545, 0.001);
}

TEST(CkSimNoise, streamsAreNormalAndUnrelated) {
    // Of a million values the mean scatters by 0.001, a mean product by 0.001: five times that is allowed.
    constexpr int count = 1000000;
    const SkRows rows = draw(1, 0, 0, 0, count);
    const std::vector<float> ones(size_t(count), 1.0F);
    for (const std::vector<float>* row : {&rows.first, &rows.second, &rows.third}) {
        EXPECT_NEAR(correlation(*row, ones), 0.0, 0.005);
        EXPECT_NEAR(correlation(*row, *row), 1.0, 0.0075);
        EXPECT_NEAR(correlation(*row, *row, 1), 0.0, 0.005);
        EXPECT_NEAR(correlation(*row, *row, 2), 0.0, 0.005);
    }
    EXPECT_NEAR(correlation(rows.first, rows.second), 0.0, 0.005);
    EXPECT_NEAR(correlation(rows.first, rows.third), 0.0, 0.005);
    EXPECT_NEAR(correlation(rows.second, rows.third), 0.0, 0.005);
    EXPECT_NEAR(correlation(rows.first, draw(2, 0, 0, 0, count).first), 0.0, 0.005);
    EXPECT_NEAR(correlation(rows.first, draw(1, 1, 0, 0, count).first), 0.0, 0.005);
    EXPECT_NEAR(correlation(rows.first, draw(1, 0, 90, 0, count).first), 0.0, 0.005);
    EXPECT_NEAR(correlation(rows.first, draw(1, 0, 0, 1, count).first), 0.0, 0.005);
}

TEST(CkSimNoise, keysDoNotCollide) {
    std::set<quint64> keys;
    for (quint64 seed = 0; seed < 8; ++seed) {
        for (quint64 set = 0; set < 8; ++set) {
            for (quint32 exposure = 0; exposure < 8; ++exposure) {
                for (quint32 row = 0; row < 64; ++row) {
                    keys.insert(CkSimNoise::rowKey(seed, set, exposure, row));
                }
            }
        }
    }
    EXPECT_EQ(keys.size(), size_t(8 * 8 * 8 * 64));
}

TEST(CkSimNoise, aValueDependsOnItsPositionAlone) {
    const SkRows whole = draw(5, 6, 7, 8, 100);
    const SkRows part = draw(5, 6, 7, 8, 50);
    for (size_t index = 0; index < 50; ++index) {
        EXPECT_EQ(whole.first[index], part.first[index]);
        EXPECT_EQ(whole.second[index], part.second[index]);
    }
}
