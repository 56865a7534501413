// Exported clouds as another program reads them: the converter of the Point Cloud Library.

#include "CloudRig.h"
#include "cloud/CkToFDepthFrame.h"
#include "cloud/CkToFPlyText.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <cmath>
#include <gtest/gtest.h>

namespace {

/// The points of a PCD text file in the order of the file.
std::vector<SkToFPoint> readPcd(const QString& fileName) {
    QFile file(fileName);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    std::vector<SkToFPoint> points;
    qsizetype announced = -1;
    bool data = false;
    while (!file.atEnd()) {
        const QList<QByteArray> words = file.readLine().simplified().split(' ');
        if (data) {
            EXPECT_GE(words.size(), 3);
            points.push_back({words.value(0).toFloat(), words.value(1).toFloat(), words.value(2).toFloat()});
        } else if (words[0] == "FIELDS") {
            EXPECT_EQ(words.mid(1, 3), QList<QByteArray>({"x", "y", "z"}));
        } else if (words[0] == "POINTS") {
            announced = words.value(1).toLongLong();
        } else if (words[0] == "DATA") {
            EXPECT_EQ(words.value(1), "ascii");
            data = true;
        }
    }
    EXPECT_EQ(announced, qsizetype(points.size()));
    return points;
}

/// PCD texts hold eight digits.
void expectNear(float read, float written) {
    EXPECT_LE(std::fabs(double(read) - double(written)), 1e-7 * std::fabs(double(written)) + 1e-12)
        << read << " for " << written;
}

void expectReadBack(std::span<const SkToFPoint> points) {
    QTemporaryDir folder;
    const QString ply = folder.filePath(QStringLiteral("cloud.ply"));
    const QString pcd = folder.filePath(QStringLiteral("cloud.pcd"));
    QFile file(ply);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const QByteArray text = buildPlyText(points);
    ASSERT_EQ(file.write(text), text.size());
    file.close();

    QProcess converter;
    converter.start(QStringLiteral(PLY2PCD), {QStringLiteral("-format"), QStringLiteral("0"), ply, pcd});
    ASSERT_TRUE(converter.waitForFinished(120000));
    ASSERT_EQ(converter.exitCode(), 0) << converter.readAllStandardError().toStdString();
    const std::vector<SkToFPoint> read = readPcd(pcd);
    ASSERT_EQ(read.size(), points.size());
    for (size_t i = 0; i < read.size() && !testing::Test::HasFailure(); ++i) {
        expectNear(read[i].x, points[i].x);
        expectNear(read[i].y, points[i].y);
        expectNear(read[i].z, points[i].z);
    }
}

TEST(PlyInterop, ACloudInMillimetresIsReadBackPointByPoint) {
    HeapPicture input(640, 480, 2, EkImageDataType::Float32);
    for (quint32 y = 0; y < 480; y++)
        for (quint32 x = 0; x < 640; x++) {
            input.at<float>(x, y, 0) = 3.0F + std::sin(float(x) / 40.0F) * std::cos(float(y) / 30.0F);
            // Every seventh column is dropped: no placeholders may come back for them.
            input.at<float>(x, y, 1) = x % 7 == 3 ? 99.0F : 0.1F;
        }
    CkImageMetadata metadata;
    metadata.channelNames = {"Phase shift", "Confidence"};
    CkToFDepthFrame frame;
    ASSERT_TRUE(frame.update(*input, &metadata, 640));
    CkToFCloudBuilder builder;
    ASSERT_TRUE(builder.build(frame.pictures(), testParameters(true)));
    ASSERT_TRUE(builder.usedLens());
    ASSERT_EQ(builder.pointCount(), (640 - 91) * 480);
    expectReadBack(builder.exportPoints());
}

TEST(PlyInterop, SmallLargeAndNegativeNumbersAreReadBack) {
    const std::array<SkToFPoint, 4> points = {
        {{1.5F, -2.0F, 0.25F}, {1e-7F, -3.4e-5F, 123456.789F}, {-1e20F, 2e10F, 0.0F}, {1.0F, 1e6F, 1e-3F}}};
    expectReadBack(points);
}

} // namespace
