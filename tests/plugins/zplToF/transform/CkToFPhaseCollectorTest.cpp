#include "plugins/zplToF/transform/CkToFPhaseCollector.h"
#include "tests/support/TestPicture.h"

#include <gtest/gtest.h>

namespace {

PaddedPicture image(quint8 value, quint32 width = 5, quint32 height = 3) {
    PaddedPicture picture(width, height, 2, EkImageDataType::UInt8);
    picture.fill<quint8>([value](quint32, quint32, quint32) { return value; });
    return picture;
}

SkPicBufInfo format(quint32 width = 5, quint32 height = 3) {
    SkPicBufInfo info;
    info.width = width;
    info.height = height;
    info.channels = 2;
    info.lineSize = 2 * width;
    info.bitsPerChannel = 8;
    info.dataType = EkImageDataType::UInt8;
    return info;
}

bool add(CkToFPhaseCollector& collector, quint8 value, qint64 count, qint64 index, qint32 angle) {
    PaddedPicture picture = image(value);
    return collector.add(*picture, {count, index}, angle).complete;
}

EkFrameRefusal refusal(CkToFPhaseCollector& collector, qint64 count, qint64 index) {
    PaddedPicture picture = image(99);
    return collector.add(*picture, {count, index}, 45).refusal;
}

std::vector<int> rows(const SkPicBuf& picture) {
    std::vector<int> values;
    for (quint32 y = 0; y < picture.height; ++y) {
        values.push_back(sampleAt<quint8>(picture, picture.width - 1, y, 1));
    }
    return values;
}

TEST(CkToFPhaseCollector, StacksImagesByTheirIndexWhateverTheOrder) {
    CkToFPhaseCollector collector;
    ASSERT_EQ(collector.prepare(format(), 3), EkFrameRefusal::None);
    EXPECT_FALSE(add(collector, 10, 3, 0, 0));
    EXPECT_FALSE(add(collector, 30, 3, 2, 180));
    EXPECT_EQ(collector.angles(), (CkToFPicAPI::AngleList{0, -1000, 180}));
    EXPECT_TRUE(add(collector, 20, 3, 1, 90));
    EXPECT_EQ(collector.angles(), (CkToFPicAPI::AngleList{0, 90, 180}));
    EXPECT_EQ(rows(collector.set()), (std::vector<int>{10, 10, 10, 20, 20, 20, 30, 30, 30}));
}

TEST(CkToFPhaseCollector, EveryImageAfterACompleteSetCompletesItAgain) {
    CkToFPhaseCollector collector;
    ASSERT_EQ(collector.prepare(format(), 2), EkFrameRefusal::None);
    EXPECT_FALSE(add(collector, 1, 2, 0, 0));
    EXPECT_TRUE(add(collector, 2, 2, 1, 90));
    EXPECT_TRUE(add(collector, 3, 2, 1, 91));
    EXPECT_EQ(rows(collector.set()), (std::vector<int>{1, 1, 1, 3, 3, 3}));
    EXPECT_FALSE(add(collector, 4, 2, 0, 0));
    EXPECT_EQ(collector.angles(), (CkToFPicAPI::AngleList{0, -1000}));
}

TEST(CkToFPhaseCollector, TheSetIsDescribedLikeItsLastImage) {
    CkToFPhaseCollector collector;
    ASSERT_EQ(collector.prepare(format(), 2), EkFrameRefusal::None);
    EXPECT_FALSE(add(collector, 1, 2, 0, 0));
    PaddedPicture last = image(2);
    (*last).bitsPerChannel = 7;
    (*last).colorFilterArray = EkColorFilterArray(9);
    (*last).layoutFlag = true;
    ASSERT_TRUE(collector.add(*last, {2, 1}, 90).complete);
    EXPECT_EQ(collector.set().bitsPerChannel, 7U);
    EXPECT_EQ(collector.set().colorFilterArray, EkColorFilterArray(9));
    EXPECT_TRUE(collector.set().layoutFlag);
    EXPECT_EQ(collector.set().width, 5U);
    EXPECT_EQ(collector.set().height, 6U);
}

TEST(CkToFPhaseCollector, IndicesOutsideTheSetDisturbNothing) {
    CkToFPhaseCollector collector;
    ASSERT_EQ(collector.prepare(format(), 2), EkFrameRefusal::None);
    EXPECT_FALSE(add(collector, 1, 2, 0, 0));
    for (qint64 index : {qint64(2), qint64(-1), qint64(1) << 40, -(qint64(1) << 40)}) {
        EXPECT_FALSE(add(collector, 99, 2, index, 45));
        EXPECT_EQ(collector.angles(), (CkToFPicAPI::AngleList{0, -1000}));
    }
    EXPECT_TRUE(add(collector, 2, 2, 1, 90));
    EXPECT_EQ(rows(collector.set()), (std::vector<int>{1, 1, 1, 2, 2, 2}));
}

TEST(CkToFPhaseCollector, AnotherCountKeepsTheImagesThatFit) {
    CkToFPhaseCollector collector;
    ASSERT_EQ(collector.prepare(format(), 4), EkFrameRefusal::None);
    EXPECT_FALSE(add(collector, 1, 4, 0, 0));
    EXPECT_FALSE(add(collector, 3, 4, 2, 180));
    EXPECT_TRUE(add(collector, 2, 2, 1, 90)) << "of two images both are there";
    EXPECT_EQ(collector.set().height, 6U);
    EXPECT_EQ(rows(collector.set()), (std::vector<int>{1, 1, 1, 2, 2, 2}));
    EXPECT_FALSE(add(collector, 4, 4, 3, 270));
    EXPECT_EQ(collector.angles(), (CkToFPicAPI::AngleList{0, 90, -1000, 270})) << "grown again";
}

TEST(CkToFPhaseCollector, ASetThatDoesNotFitTheBufferIsNotGathered) {
    CkToFPhaseCollector collector;
    ASSERT_EQ(collector.prepare(format(), 2), EkFrameRefusal::None);
    EXPECT_FALSE(add(collector, 1, 2, 0, 0));
    EXPECT_EQ(refusal(collector, 3, 1), EkFrameRefusal::SetDiffers);
    EXPECT_EQ(collector.angles(), (CkToFPicAPI::AngleList{0, -1000, -1000})) << "the list is resized";
    EXPECT_EQ(refusal(collector, 2000000000, 1), EkFrameRefusal::SetTooLarge);
    EXPECT_EQ(collector.angles(), (CkToFPicAPI::AngleList{0, -1000, -1000})) << "but not to that";
    EXPECT_TRUE(add(collector, 2, 2, 1, 90));
    EXPECT_EQ(rows(collector.set()), (std::vector<int>{1, 1, 1, 2, 2, 2}));
    EXPECT_EQ(refusal(collector, 2000000000, 0), EkFrameRefusal::SetTooLarge);
    EXPECT_EQ(collector.angles(), (CkToFPicAPI::AngleList{-1000, -1000})) << "index 0 begins a new set";
    EXPECT_EQ(refusal(collector, 0, 0), EkFrameRefusal::OutsideSet);
    EXPECT_TRUE(collector.angles().empty());
    EXPECT_EQ(refusal(collector, -5, 0), EkFrameRefusal::OutsideSet);
}

TEST(CkToFPhaseCollector, ImagesThatDoNotFitTheBufferAreNotStored) {
    CkToFPhaseCollector collector;
    ASSERT_EQ(collector.prepare(format(), 2), EkFrameRefusal::None);
    EXPECT_FALSE(add(collector, 1, 2, 0, 0));
    PaddedPicture wide = image(9, 6, 3);
    PaddedPicture high = image(9, 5, 4);
    PaddedPicture otherType(5, 3, 1, EkImageDataType::UInt16);
    const SkPicBuf none;
    for (const SkPicBuf* picture :
         std::initializer_list<const SkPicBuf*>{&*wide, &*high, &*otherType, &none}) {
        const auto added = collector.add(*picture, {2, 1}, 90);
        EXPECT_FALSE(added.complete);
        EXPECT_EQ(added.refusal, EkFrameRefusal::SetDiffers);
    }
    EXPECT_EQ(collector.angles(), (CkToFPicAPI::AngleList{0, -1000}));
    EXPECT_TRUE(add(collector, 2, 2, 1, 90));
    EXPECT_EQ(rows(collector.set()), (std::vector<int>{1, 1, 1, 2, 2, 2}));
}

TEST(CkToFPhaseCollector, AnImageThatIsTakenIsNotRefused) {
    CkToFPhaseCollector collector;
    ASSERT_EQ(collector.prepare(format(), 2), EkFrameRefusal::None);
    for (qint64 index : {0, 1, 1, 0, 1}) {
        EXPECT_EQ(refusal(collector, 2, index), EkFrameRefusal::None);
    }
    for (qint64 index : {qint64(2), qint64(-1), qint64(1) << 40, -(qint64(1) << 40)}) {
        EXPECT_EQ(refusal(collector, 2, index), EkFrameRefusal::OutsideSet);
    }
}

TEST(CkToFPhaseCollector, SmallerImagesStandAtTheirOwnHeight) {
    CkToFPhaseCollector collector;
    ASSERT_EQ(collector.prepare(format(), 2), EkFrameRefusal::None);
    PaddedPicture first = image(1, 4, 2);
    PaddedPicture second = image(2, 4, 2);
    EXPECT_FALSE(collector.add(*first, {2, 0}, 0).complete);
    EXPECT_TRUE(collector.add(*second, {2, 1}, 90).complete);
    EXPECT_EQ(collector.set().width, 4U);
    EXPECT_EQ(rows(collector.set()), (std::vector<int>{1, 1, 2, 2}));
}

TEST(CkToFPhaseCollector, WithoutABufferTheListIsResizedButNothingIsKept) {
    CkToFPhaseCollector collector;
    EXPECT_FALSE(collector.hasBuffer());
    EXPECT_EQ(refusal(collector, 2, 0), EkFrameRefusal::SetDiffers);
    EXPECT_EQ(collector.angles(), (CkToFPicAPI::AngleList{-1000, -1000}));
    EXPECT_EQ(refusal(collector, 1, 0), EkFrameRefusal::SetDiffers);
    EXPECT_EQ(collector.angles(), (CkToFPicAPI::AngleList{-1000}));
    EXPECT_EQ(refusal(collector, 3, 7), EkFrameRefusal::OutsideSet);
    EXPECT_EQ(collector.angles(), (CkToFPicAPI::AngleList{-1000, -1000, -1000}));
    ASSERT_EQ(collector.prepare(format(), 1), EkFrameRefusal::None);
    EXPECT_TRUE(add(collector, 1, 1, 0, 0));
    collector.clear();
    EXPECT_FALSE(collector.hasBuffer());
    EXPECT_TRUE(collector.angles().empty());
    EXPECT_EQ(collector.set().data, nullptr);
}

TEST(CkToFPhaseCollector, NothingToGatherNeedsNoBuffer) {
    CkToFPhaseCollector collector;
    EXPECT_EQ(collector.prepare(format(), 0), EkFrameRefusal::None);
    EXPECT_EQ(collector.prepare(format(), -3), EkFrameRefusal::None);
    EXPECT_EQ(collector.prepare(SkPicBufInfo(), 4), EkFrameRefusal::None);
    EXPECT_FALSE(collector.hasBuffer());
}

TEST(CkToFPhaseCollector, ImagesOfExactlyOneGiBAreWithinTheLimit) {
    // Rows of 65536 bytes, 16384 rows in all.
    const std::pair<quint32, qint64> sets[] = {{16384, 1}, {8192, 2}, {1, 16384}};
    for (const auto& [height, count] : sets) {
        CkToFPhaseCollector collector;
        EXPECT_EQ(collector.prepare(format(32768, height), count), EkFrameRefusal::None) << count;
        EXPECT_TRUE(collector.hasBuffer());
        EXPECT_EQ(collector.prepare(format(32768, height), count + 1), EkFrameRefusal::SetTooLarge) << count;
        EXPECT_FALSE(collector.hasBuffer());
    }
    CkToFPhaseCollector collector;
    EXPECT_EQ(collector.prepare(format(32768, 16385), 1), EkFrameRefusal::SetTooLarge);
    EXPECT_EQ(collector.prepare(format(65536, 65535), 1), EkFrameRefusal::SetTooLarge);
    EXPECT_EQ(collector.prepare(format(), 2000000000), EkFrameRefusal::SetTooLarge);
    EXPECT_EQ(collector.prepare(format(), std::numeric_limits<qint64>::max()), EkFrameRefusal::SetTooLarge);
}

TEST(CkToFPhaseCollector, ImagesOfAFewBytesCountAs64) {
    CkToFPhaseCollector collector;
    EXPECT_EQ(collector.prepare(format(1, 1), 16777217), EkFrameRefusal::SetTooLarge);
    EXPECT_EQ(collector.prepare(format(1, 1), 16777216), EkFrameRefusal::None); // 2^24 * 64 = 1 GiB
    collector.clear();
    EXPECT_EQ(refusal(collector, 16777217, 0), EkFrameRefusal::SetTooLarge);
    EXPECT_TRUE(collector.angles().empty());
}

} // namespace
