#include "plugins/zplToF/transform/CkToFSectionReference.h"
#include "tests/support/TestPicture.h"

#include <gtest/gtest.h>

namespace {

TEST(CkToFSectionReference, SubtractsWithoutGoingBelowZero) {
    PaddedPicture frame(5, 2, 3, EkImageDataType::UInt16, 12);
    frame.fill<quint16>([](quint32 x, quint32, quint32) { return quint16(10 * x); });
    PaddedPicture dark(5, 2, 3, EkImageDataType::UInt16, 12);
    dark.fill<quint16>([](quint32, quint32, quint32) { return quint16(15); });
    CkToFSectionReference reference;
    ASSERT_TRUE(reference.prepare(*frame));
    const SkPicBuf* difference = reference.difference(*frame);
    ASSERT_NE(difference, nullptr);
    EXPECT_EQ(sampleAt<quint16>(*difference, 4, 1, 2), 40) << "the reference starts zeroed";
    EXPECT_TRUE(reference.setReference(*dark));
    difference = reference.difference(*frame);
    ASSERT_NE(difference, nullptr);
    EXPECT_EQ(sampleAt<quint16>(*difference, 0, 1, 2), 0);
    EXPECT_EQ(sampleAt<quint16>(*difference, 1, 0, 0), 0);
    EXPECT_EQ(sampleAt<quint16>(*difference, 2, 1, 2), 5);
    EXPECT_EQ(sampleAt<quint16>(*difference, 4, 0, 1), 25);
    EXPECT_EQ(frame.at<quint16>(4, 0, 1), 40) << "the frame itself stays";
}

TEST(CkToFSectionReference, TheDifferenceIsDescribedLikeItsFrame) {
    PaddedPicture frame(5, 2, 3, EkImageDataType::UInt16, 12);
    CkToFSectionReference reference;
    ASSERT_TRUE(reference.prepare(*frame));
    frame->bitsPerChannel = 10;
    frame->colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    frame->layoutFlag = true;
    const SkPicBuf* const difference = reference.difference(*frame);
    ASSERT_NE(difference, nullptr);
    EXPECT_EQ(difference->bitsPerChannel, 10U);
    EXPECT_EQ(difference->colorFilterArray, EkColorFilterArray::RawX3Hybrid);
    EXPECT_TRUE(difference->layoutFlag);
}

TEST(CkToFSectionReference, WithoutBuffersOrForAnotherFormatThereIsNoDifference) {
    PaddedPicture frame(5, 2, 3, EkImageDataType::UInt16, 12);
    PaddedPicture other(5, 3, 3, EkImageDataType::UInt16, 12);
    CkToFSectionReference reference;
    EXPECT_FALSE(reference.hasBuffers());
    EXPECT_EQ(reference.difference(*frame), nullptr);
    EXPECT_FALSE(reference.setReference(*frame));
    EXPECT_EQ(reference.difference(*frame), nullptr);
    EXPECT_FALSE(reference.prepare(SkPicBufInfo()));
    EXPECT_EQ(reference.difference(*frame), nullptr);
    ASSERT_TRUE(reference.prepare(*frame));
    EXPECT_EQ(reference.difference(*other), nullptr);
    EXPECT_TRUE(reference.hasBuffers());
    EXPECT_FALSE(reference.setReference(*other));
    EXPECT_NE(reference.difference(*frame), nullptr);
    reference.clear();
    EXPECT_EQ(reference.difference(*frame), nullptr);
}

} // namespace
