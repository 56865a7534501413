#include "host/viewer/picture/Saturation.h"
#include "host/viewer/panels/quality/CkQualityMeter.h"
#include "host/viewer/panels/quality/CkSaturationMonitor.h"
#include "tests/host/viewer/ViewerPictures.h"
#include "tests/support/PushSource.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"
#include "zuCore/CkImageProvider.h"

#include <gtest/gtest.h>

namespace {

using EkAnswer = CkSaturationMonitor::EkAnswer;
using EkEvidence = Saturation::EkEvidence;

std::unique_ptr<CkImageData> numbered(std::unique_ptr<CkImageData> frame, quint64 number,
                                      const CkImageMetadata& metadata = {}) {
    frame->picBuf().additionalData.frameNumber = number;
    frame->setMetadata(metadata);
    return frame;
}

/// Two channels of 12 bits; one sample is at the end of its range.
std::unique_ptr<CkImageData> taps(quint32 width, quint32 height, quint32 hotX, quint32 hotY,
                                  quint32 channel) {
    return makeFrame<quint16>(EkImageDataType::UInt16, width, height, 2, 12,
                              [=](quint32 x, quint32 y, quint32 c) {
                                  return quint16(x == hotX && y == hotY && c == channel ? 4095 : 4094);
                              });
}

std::vector<bool> ask(const CkSaturationMonitor& watch, quint64 number, const QSize& size,
                      const QRect& region, EkAnswer expected = EkAnswer::Known) {
    std::vector<bool> saturated;
    EXPECT_EQ(watch.saturated(number, size, region, saturated), expected);
    return saturated;
}

/// Which pixel of 4 x 3 is saturated; nothing else may be.
std::vector<bool> only(int x, int y) {
    std::vector<bool> pixels(12, false);
    pixels[size_t(4 * y + x)] = true;
    return pixels;
}

const QSize kSize(4, 3);
const QRect kAll(QPoint(0, 0), kSize);

class CkHalving : public CkImageProvider {
public:
    CkHalving() : CkImageProvider(41) {}
    bool queryOutputImageInfo(const SkPicBufInfo& in, SkPicBufInfo& out, const CkImageMetadata* pIn,
                              CkImageMetadata* pOut) override {
        out = in;
        out.height = in.height / 2;
        if (pOut != nullptr && pIn != nullptr) {
            *pOut = *pIn;
        }
        return true;
    }
};

} // namespace

TEST(SaturationMonitor, APhaseThatIsSaturatedInOneTapMakesThePixelInvalid) {
    CkSaturationMonitor watch;
    // Four phases of three rows; the third phase is hot at (1, 2), in the second tap.
    watch.takeFrame(numbered(taps(4, 12, 1, 2 * 3 + 2, 1), 40).release());
    EXPECT_EQ(ask(watch, 40, kSize, kAll), only(1, 2));
    EXPECT_EQ(ask(watch, 40, kSize, QRect(1, 2, 2, 1)), (std::vector<bool>{true, false}));
    EXPECT_EQ(ask(watch, 40, kSize, QRect(2, 0, 2, 2)), std::vector<bool>(4, false));
    ask(watch, 41, kSize, kAll, EkAnswer::Missed);
    // Pictures with another width, or a height that is not a divisor, are unrelated.
    ask(watch, 40, QSize(4, 5), QRect(0, 0, 1, 1), EkAnswer::Unrelated);
    ask(watch, 40, QSize(2, 3), QRect(0, 0, 1, 1), EkAnswer::Unrelated);
    ask(watch, 40, kSize, QRect(3, 0, 2, 1), EkAnswer::Unrelated);
}

TEST(SaturationMonitor, PhasesThatComeOneByOneAddUpToTheirSet) {
    CkSaturationMonitor watch;
    CkImageMetadata metadata;
    metadata.phasesCount = 1;
    metadata.phaseSequenceLength = 2;
    for (quint64 number = 0; number < 4; ++number) {
        metadata.phaseSequenceIndex = qint32(number % 2);
        // Hot in the first phase of the first set only.
        watch.takeFrame(
            numbered(number == 0 ? taps(4, 3, 3, 1, 0) : taps(4, 3, 9, 9, 0), number, metadata).release());
    }
    EXPECT_EQ(ask(watch, 1, kSize, kAll), only(3, 1));
    EXPECT_EQ(ask(watch, 3, kSize, kAll), std::vector<bool>(12, false)) << "a new set forgets";
}

TEST(SaturationMonitor, OfSeveralExposuresTheShortestDecides) {
    CkSaturationMonitor watch;
    const auto stack = [](quint32 hotRow) {
        auto frame =
            makeFrame<quint8>(EkImageDataType::UInt8, 4, 6, 3, 8, [=](quint32 x, quint32 y, quint32) {
                return quint8(x == 2 && y == hotRow ? 255 : 10);
            });
        frame->picBuf().colorFilterArray = EkColorFilterArray::RawX3Hybrid;
        return frame;
    };
    watch.takeFrame(numbered(stack(3 + 1), 5).release());
    EXPECT_EQ(ask(watch, 5, kSize, kAll), std::vector<bool>(12, false)) << "the merge takes the other one";
    watch.takeFrame(numbered(stack(1), 6).release());
    EXPECT_EQ(ask(watch, 6, kSize, kAll), only(2, 1));
}

TEST(SaturationMonitor, ReportsASourceThatDoesNotShowSaturation) {
    CkSaturationMonitor watch;
    CkImageMetadata metadata;
    metadata.tofFormatCode = ToFFormatCode::kAminusBBits12;
    const auto signedFrame = [] {
        return makeFrame<qint16>(EkImageDataType::Int16, 4, 3, 1, 12,
                                 [](quint32, quint32, quint32) { return qint16(0); });
    };
    watch.takeFrame(numbered(signedFrame(), 1, metadata).release());
    ask(watch, 1, kSize, kAll, EkAnswer::Difference);
    watch.takeFrame(numbered(signedFrame(), 2).release());
    ask(watch, 2, kSize, kAll, EkAnswer::Undetermined);
    watch.takeFrame(numbered(makeFrame<float>(EkImageDataType::Float32, 4, 3, 1, 32,
                                              [](quint32, quint32, quint32) { return 1.0F; }),
                             3)
                        .release());
    ask(watch, 3, kSize, kAll, EkAnswer::Undetermined);
}

TEST(SaturationMonitor, StaysWithTheSourceWhenABlockIsInsertedAfterIt) {
    CkChain* chain = CkChainManager::instance()->createChain();
    auto* source = new PushSource;
    source->setFormat(4, 6, 1, EkImageDataType::UInt8, 8);
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(chain, source, nullptr));
    CkSaturationMonitor watch;
    watch.watch(source);
    EXPECT_EQ(chain->sinkBlock(&watch), source);
    auto* block = new CkHalving;
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(chain, block, source));
    watch.watch(source);
    EXPECT_EQ(chain->sinkBlock(&watch), source);
    watch.watch(nullptr);
    EXPECT_EQ(chain->sinkBlock(&watch), nullptr);
    CkChainManager::instance()->closeChain(chain);
}

TEST(Saturation, OnlySamplesOfTheCameraShowSaturation) {
    SkPicBufInfo info;
    info.width = 4;
    info.height = 6;
    info.channels = 1;
    info.dataType = EkImageDataType::UInt8;
    EXPECT_EQ(Saturation::evidence(info, {}, nullptr), EkEvidence::Samples);
    info.dataType = EkImageDataType::Float32;
    EXPECT_EQ(Saturation::evidence(info, {}, nullptr), EkEvidence::Floats);
    info.dataType = EkImageDataType::Int16;
    CkImageMetadata difference;
    for (const quint32 code : {ToFFormatCode::kAminusBBits8, ToFFormatCode::kAminusBBits12,
                               ToFFormatCode::kAminusBBits12Alternate}) {
        difference.tofFormatCode = code;
        EXPECT_EQ(Saturation::evidence(info, difference, nullptr), EkEvidence::Difference);
    }
    EXPECT_EQ(Saturation::evidence(info, {}, nullptr), EkEvidence::Samples);

    CkChain* chain = CkChainManager::instance()->createChain();
    auto* source = new PushSource;
    source->setFormat(4, 6, 1, EkImageDataType::UInt8, 8);
    auto* block = new CkHalving;
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(chain, source, nullptr));
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(chain, block, source));
    ASSERT_TRUE(chain->start());
    EXPECT_EQ(Saturation::soleSource(block), source);
    EXPECT_EQ(Saturation::evidence(source->info, {}, source), EkEvidence::Samples);
    EXPECT_EQ(Saturation::evidence(source->info, {}, block), EkEvidence::Samples) << "passed on";
    SkPicBufInfo half = source->info;
    half.height = 3;
    EXPECT_EQ(Saturation::evidence(half, {}, block), EkEvidence::Computed);
    SkPicBufInfo other = source->info;
    other.dataType = EkImageDataType::Float32;
    EXPECT_EQ(Saturation::evidence(other, {}, block), EkEvidence::Computed);
    CkChainManager::instance()->closeChain(chain);
    EXPECT_FALSE(Saturation::reason(EkEvidence::Computed).isEmpty());
    EXPECT_TRUE(Saturation::reason(EkEvidence::Samples).isEmpty());
}

TEST(QualityMeter, SaturatedPixelsAreNotValidWhateverTheyHold) {
    auto frame = makeFrame<float>(EkImageDataType::Float32, 4, 1, 1, 32,
                                  [](quint32 x, quint32, quint32) { return x == 1 ? 0.0F : 2.0F; });
    CkImageMetadata metadata;
    metadata.channelNames = QStringList{QStringLiteral("Depth")};
    frame->setMetadata(metadata);
    CkQualityMeter meter;
    meter.setRegion(QRect(0, 0, 4, 1));
    SkQualityValues values;
    ASSERT_TRUE(meter.add(*frame, 0, {false, true, false, false}, values));
    EXPECT_DOUBLE_EQ(values.validShare, 0.75);
    EXPECT_DOUBLE_EQ(values.mean, 2000.0);
    EXPECT_DOUBLE_EQ(values.spatialStd, 0.0);
}
