#include "host/viewer/picture/CkPictureRenderer.h"

#include "tests/host/viewer/ViewerPictures.h"
#include "zuCore/CkLut.h"

#include <gtest/gtest.h>

namespace {

using EkChange = CkPictureRenderer::EkChange;

std::unique_ptr<CkImageData> phases() {
    auto frame = makeFrame<float>(EkImageDataType::Float32, 8, 2, 2, 32, [](quint32 x, quint32, quint32 c) {
        return c == 0 ? 0.5F * float(x) : 100.0F + float(x);
    });
    CkImageMetadata metadata;
    metadata.channelNames = QStringList{"Phase shift", "Confidence"};
    frame->setMetadata(metadata);
    return frame;
}

std::unique_ptr<CkImageData> counts(quint32 bits = 12) {
    return makeFrame<quint16>(EkImageDataType::UInt16, 8, 2, 1, bits,
                              [](quint32 x, quint32, quint32) { return quint16(100 * x); });
}

CkPictureRenderer greyRenderer() {
    CkPictureRenderer renderer;
    renderer.setColours(CkLut(8, 1, false, EkImageDataType::UInt8));
    return renderer;
}

TEST(PictureRenderer, DistinguishesAnotherFormatFromAnotherKind) {
    CkPictureRenderer renderer;
    EXPECT_EQ(renderer.format().channels, 0U);
    EXPECT_EQ(renderer.adaptTo(*counts()), EkChange::Kind);
    EXPECT_EQ(renderer.adaptTo(*counts()), EkChange::None);
    EXPECT_EQ(renderer.adaptTo(*counts(10)), EkChange::Format);
    EXPECT_EQ(renderer.window(), (SkDisplayWindow{0.0, 1023.0}));
    EXPECT_EQ(renderer.adaptTo(*phases()), EkChange::Kind);
    EXPECT_EQ(renderer.format().channels, 2U);
    auto renamed = phases();
    CkImageMetadata metadata;
    metadata.channelNames = QStringList{"Depth", "Confidence"};
    renamed->setMetadata(metadata);
    EXPECT_EQ(renderer.unit(), "rad");
    EXPECT_EQ(renderer.adaptTo(*renamed), EkChange::Format);
    EXPECT_EQ(renderer.unit(), "m");
}

TEST(PictureRenderer, ChannelsAreLimitedToThoseThereAre) {
    CkPictureRenderer renderer;
    renderer.adaptTo(*phases());
    EXPECT_EQ(renderer.channel(), 0);
    EXPECT_FALSE(renderer.setChannel(-1)); // no colour picture
    EXPECT_TRUE(renderer.setChannel(7));
    EXPECT_EQ(renderer.channel(), 1);
    EXPECT_EQ(renderer.unit(), "");
    renderer.adaptTo(*makeFrame<quint8>(EkImageDataType::UInt8, 4, 4, 3, 8,
                                        [](quint32, quint32, quint32 c) { return quint8(c); }));
    EXPECT_EQ(renderer.channel(), -1);
    EXPECT_TRUE(renderer.setChannel(2));
    EXPECT_TRUE(renderer.setChannel(-5));
    EXPECT_EQ(renderer.channel(), -1);
}

TEST(PictureRenderer, OnlyAutomaticContrastMovesTheWindow) {
    CkPictureRenderer renderer = greyRenderer();
    const auto frame = phases();
    renderer.adaptTo(*frame);
    EXPECT_TRUE(renderer.setWindow({2.0, 1.0}));
    EXPECT_FALSE(renderer.setWindow({0.0, std::numeric_limits<double>::infinity()}));
    ASSERT_TRUE(renderer.render(frame->picBuf(), {false, false}));
    EXPECT_EQ(renderer.window(), (SkDisplayWindow{1.0, 2.0}));
    EXPECT_EQ(renderer.fullRange(frame->picBuf()), (SkDisplayWindow{0.0, 3.5}));
    ASSERT_TRUE(renderer.render(frame->picBuf(), {true, false}));
    EXPECT_EQ(renderer.window(), (SkDisplayWindow{0.0, 3.5}));
    EXPECT_EQ(renderer.image().pixel(0, 0), qRgb(0, 0, 0));
    EXPECT_EQ(renderer.image().pixel(7, 1), qRgb(255, 255, 255));
}

TEST(PictureRenderer, AFormatThatCannotBeShownLeavesNoOldImage) {
    CkPictureRenderer renderer = greyRenderer();
    const auto good = counts();
    renderer.adaptTo(*good);
    ASSERT_TRUE(renderer.render(good->picBuf(), {true, false}));
    EXPECT_EQ(renderer.image().size(), QSize(8, 2));
    const auto bad = makeFrame<quint16>(EkImageDataType::Other16, 8, 2, 1, 16,
                                        [](quint32, quint32, quint32) { return quint16(1); });
    renderer.adaptTo(*bad);
    EXPECT_FALSE(renderer.render(bad->picBuf(), {true, false}));
    EXPECT_TRUE(renderer.image().isNull());
}

TEST(PictureRenderer, OnlyTablesOfUnsignedPicturesGetTheWindow) {
    CkPictureRenderer renderer;
    CkLut lut(16, 1, false, EkImageDataType::UInt16);
    renderer.adaptTo(*counts());
    renderer.setWindow({-20.0, 9000.0});
    renderer.storeWindow(phases()->picBuf(), lut);
    EXPECT_TRUE(lut.contrastEntries().isEmpty());
    renderer.storeWindow(counts()->picBuf(), lut);
    ASSERT_EQ(lut.contrastEntries().size(), 1);
    EXPECT_EQ(lut.contrastEntries().first().inLow, 0U);
    EXPECT_EQ(lut.contrastEntries().first().inHigh, 4095U);
}

} // namespace
