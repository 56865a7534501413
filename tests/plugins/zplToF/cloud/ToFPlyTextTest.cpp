#include "plugins/zplToF/cloud/ToFPlyText.h"

#include "tests/plugins/zplToF/cloud/CloudRig.h"

#include <QLocale>
#include <QString>

#include <gmock/gmock.h>

#include <cmath>
#include <random>
#include <vector>

namespace {

QByteArray byArg(float value) {
    return QString("%1").arg(double(value), 0, 'g', QLocale::FloatingPointShortest).toUtf8();
}

QByteArray headerFor(size_t points) {
    return "ply\nformat ascii 1.0\nelement vertex " + QByteArray::number(qulonglong(points)) +
           "\nproperty float x\nproperty float y\nproperty float z\nend_header\n";
}

/// The text by the obvious implementation.
QByteArray textByArg(const std::vector<SkToFPoint>& points) {
    QByteArray text = headerFor(points.size());
    for (const SkToFPoint& point : points) {
        text += byArg(point.x) + ' ' + byArg(point.y) + ' ' + byArg(point.z) + '\n';
    }
    return text;
}

std::vector<SkToFPoint> inThrees(std::vector<float> values) {
    while (values.size() % 3 != 0) {
        values.push_back(0.0F);
    }
    std::vector<SkToFPoint> points;
    for (size_t i = 0; i < values.size(); i += 3) {
        points.push_back({values[i], values[i + 1], values[i + 2]});
    }
    return points;
}

void expectSameText(const std::vector<SkToFPoint>& points) {
    const QByteArray text = buildPlyText(points);
    const QByteArray expected = textByArg(points);
    if (text == expected) {
        return;
    }
    const QList<QByteArray> lines = text.split('\n');
    const QList<QByteArray> expectedLines = expected.split('\n');
    ASSERT_EQ(lines.size(), expectedLines.size());
    for (int i = 0; i < lines.size(); i++) {
        ASSERT_EQ(lines[i].toStdString(), expectedLines[i].toStdString()) << "line " << i;
    }
}

} // namespace

TEST(ToFPlyText, ThreePointsGiveTheHeaderAndThreeLines) {
    const std::vector<SkToFPoint> points = {{1.5F, -2.0F, 0.25F}, {0.0F, 0.0F, 0.0F}, {100.0F, 1e-7F, 3e20F}};
    EXPECT_EQ(
        buildPlyText(points).toStdString(),
        "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nproperty float y\nproperty float z\n"
        "end_header\n"
        "1.5 -2 0.25\n"
        "0 0 0\n"
        // The floats nearest to 1e-7 and 3e20, as doubles. 3.000000060122632e+20 would be as long as the
        // decimal form, which is preferred then.
        "100 1.0000000116860974e-07 300000006012263200000\n");
}

TEST(ToFPlyText, APointIsWrittenWithoutTrailingZeros) {
    const std::vector<SkToFPoint> points = {{1.5F, -2.0F, 0.25F}};
    EXPECT_EQ(buildPlyText(points), headerFor(1) + "1.5 -2 0.25\n");
}

TEST(ToFPlyText, NoPointsGiveTheHeaderOnly) {
    EXPECT_EQ(buildPlyText({}), headerFor(0));
}

TEST(ToFPlyText, TrickyNumbersAreThoseOfQString) {
    std::vector<float> values = {0.0F,
                                 -0.0F,
                                 std::numeric_limits<float>::max(),
                                 std::numeric_limits<float>::lowest(),
                                 std::numeric_limits<float>::min(),
                                 std::numeric_limits<float>::denorm_min(),
                                 0.1F,
                                 1.0F / 3.0F,
                                 16777216.0F,
                                 16777218.0F,
                                 NotANumber,
                                 -NotANumber,
                                 Infinite,
                                 -Infinite};
    // Around every change between decimals and exponents.
    for (int exponent = -46; exponent <= 38; exponent++) {
        for (float digits : {1.0F, 1.5F, 9.0F, 9.999999F, 1.234567F, 1.25F}) {
            const float value = float(double(digits) * std::pow(10.0, exponent));
            for (float near : {std::nextafter(value, 0.0F), value, std::nextafter(value, Infinite)}) {
                values.push_back(near);
                values.push_back(-near);
            }
        }
    }
    for (int exponent = -149; exponent < 128; exponent++) {
        values.push_back(std::ldexp(1.0F, exponent));
    }
    expectSameText(inThrees(values));
}

TEST(ToFPlyText, MinusZeroAndLargeWholeNumbersAreTheseBytes) {
    // Powers of two above 2^53 in the digits that tell doubles apart, filled up with zeros: 2^60 is
    // 1152921504606846976, 2^63 is 9223372036854775808. Where an exponent is shorter it is written: 2^77 is
    // 151115727451828646838272.
    const std::vector<SkToFPoint> points = {
        {-0.0F, 0.0F, -0.0F},
        {std::ldexp(1.0F, 53), std::ldexp(-1.0F, 54), std::ldexp(1.0F, 60)},
        {std::ldexp(-1.0F, 63), std::ldexp(1.0F, 64), std::ldexp(-1.0F, 77)}};
    EXPECT_EQ(buildPlyText(points).toStdString(),
              (headerFor(3) + "0 0 0\n"
                              "9007199254740992 -18014398509481984 1152921504606847000\n"
                              "-9223372036854776000 18446744073709552000 -1.5111572745182865e+23\n")
                  .toStdString());
}

TEST(ToFPlyText, AMillionNumbersAreThoseOfQString) {
    std::mt19937 random(20);
    std::vector<float> values;
    while (values.size() < 1000000) {
        float value = 0.0F;
        switch (values.size() % 5) {
        case 0:
        case 1: { // any bits that are a number
            const auto bits = quint32(random());
            std::memcpy(&value, &bits, sizeof value);
            break;
        }
        case 2: // scene units
            value = float(qint32(random())) / 2147483648.0F;
            break;
        case 3: // millimetres
            value = float(random() % 10000000) / 1000.0F;
            break;
        default: // few digits
            value = float(qint32(random() % 200001) - 100000) / float(1 << random() % 12);
            break;
        }
        if (std::isfinite(value)) {
            values.push_back(value);
        }
    }
    expectSameText(inThrees(values));
}

TEST(ToFPlyText, ReadsBackAsTheSamePoints) {
    std::mt19937 random(3);
    std::vector<SkToFPoint> points(5000);
    for (SkToFPoint& point : points) {
        point = {float(random()) * 1e-6F, -float(random()) * 1e-3F, float(random())};
    }
    const QList<QByteArray> lines = buildPlyText(points).split('\n');
    ASSERT_EQ(lines.size(), 7 + 5000 + 1);
    for (int i = 0; i < 5000; i++) {
        const QList<QByteArray> numbers = lines[7 + i].split(' ');
        ASSERT_EQ(numbers.size(), 3);
        EXPECT_EQ(points[size_t(i)],
                  (SkToFPoint{numbers[0].toFloat(), numbers[1].toFloat(), numbers[2].toFloat()}));
    }
}
