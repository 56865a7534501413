// The depth picture of a real camera: our lens model gives the same cloud as another library.

#include "plugins/zplToF/cloud/CkToFDepthFrame.h"
#include "tests/plugins/zplToF/cloud/CloudRig.h"

#include <QFile>

#include <gmock/gmock.h>

namespace {

constexpr quint32 Width = 640;
constexpr quint32 Height = 480;
constexpr quint32 Step = 8;

QByteArray readFile(const char* name) {
    QFile file(QString::fromUtf8(TEST_DATA "/primesense/") + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

TEST(RealDepthPicture, GivesTheCloudOfAnotherLibrary) {
    const QByteArray millimetres = qUncompress(readFile("depth_mm_u16le.qz"));
    const QByteArray cloud = readFile("xyz_m_f32le_every_8th.raw");
    ASSERT_EQ(millimetres.size(), qsizetype(Width * Height * 2));
    ASSERT_EQ(cloud.size(), qsizetype(Width / Step * (Height / Step) * 12));

    // Metres, and confidence 0 where the camera measured nothing: those pixels are dropped.
    TestPicture input(Width, Height, 2, EkImageDataType::Float32);
    for (quint32 v = 0; v < Height; v++) {
        for (quint32 u = 0; u < Width; u++) {
            quint16 depth = 0;
            std::memcpy(&depth, millimetres.constData() + 2 * (v * Width + u), sizeof depth);
            input.set<float>(u, v, 0, float(depth) / 1000.0F);
            input.set<float>(u, v, 1, depth == 0 ? 0.0F : 0.5F);
        }
    }
    CkImageMetadata metadata;
    metadata.channelNames = {"Depth", "Confidence"};
    CkToFDepthFrame frame;
    ASSERT_TRUE(frame.update(*input, &metadata, 640));
    ASSERT_EQ(frame.depthDataKind(), EkDepthDataType::Depth);

    // 525 pixels of focal length with cells of 0.01 mm. Both conventions put the axis at a pixel index
    // (ours at 640 / 2 and 480 / 2, theirs at 320 and 240), so they do not differ by half a pixel; our y is
    // up, theirs down. The picture already holds distances along the axis: no correction, no offset.
    SkToFCloudParameters parameters = testParameters(true);
    parameters.opticalPath.lensFocalLengthMM = 5.25F;
    parameters.opticalPath.chipCellSizeMM = 0.01F;
    parameters.opticalPath.realDistanceOffsetM = 0.0F;
    parameters.opticalPath.orthoRadialCorrection = false;
    for (bool plain : {true, false}) {
        CkToFCloudBuilder builder;
        builder.setPlainLoop(plain);
        ASSERT_TRUE(builder.build(frame.pictures(), parameters));
        ASSERT_TRUE(builder.usedLens());

        int next = 0;
        int compared = 0;
        for (quint32 v = 0; v < Height; v++) {
            for (quint32 u = 0; u < Width; u++) {
                const bool valid = input.at<float>(u, v, 1) > 0.0F;
                if (v % Step == 0 && u % Step == 0) {
                    std::array<float, 3> expected;
                    std::memcpy(expected.data(),
                                cloud.constData() + 12 * (v / Step * (Width / Step) + u / Step), 12);
                    ASSERT_EQ(valid, std::isfinite(expected[2]));
                    if (valid) {
                        const SkToFPoint& point = builder.exportPoints()[size_t(next)];
                        ASSERT_NEAR(double(point.x) / 1000.0, expected[0], 1e-6) << u << ", " << v;
                        ASSERT_NEAR(-double(point.y) / 1000.0, expected[1], 1e-6) << u << ", " << v;
                        ASSERT_NEAR(double(point.z) / 1000.0, expected[2], 1e-6) << u << ", " << v;
                        compared++;
                    }
                }
                next += valid;
            }
        }
        EXPECT_EQ(builder.pointCount(), next);
        EXPECT_GT(compared, 4000);
    }
}
