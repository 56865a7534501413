#include "plugins/zplToF/transform/CkToFHdrBuffer.h"
#include "tests/support/TestPicture.h"

#include <gtest/gtest.h>

namespace {

PaddedPicture sections(quint16 value) {
    PaddedPicture picture(5, 6, 3, EkImageDataType::UInt16, 12);
    picture.fill<quint16>([value](quint32, quint32, quint32) { return value; });
    return picture;
}

TEST(CkToFHdrBuffer, WithoutABufferNothingIsMerged) {
    CkToFHdrBuffer buffer;
    PaddedPicture source = sections(100);
    EXPECT_EQ(buffer.merge(*source), nullptr);
    ASSERT_TRUE(buffer.prepare(*source, 3));
    EXPECT_NE(buffer.merge(*source), nullptr);
    buffer.clear();
    EXPECT_EQ(buffer.merge(*source), nullptr);
}

TEST(CkToFHdrBuffer, OneSectionIsNothingToMerge) {
    CkToFHdrBuffer buffer;
    PaddedPicture source = sections(100);
    ASSERT_TRUE(buffer.prepare(*source, 1));
    EXPECT_EQ(buffer.merge(*source), nullptr);
}

TEST(CkToFHdrBuffer, ADarkFrameDoesNotKeepTheBitsOfTheFrameBefore) {
    CkToFHdrBuffer buffer;
    PaddedPicture bright = sections(100);
    PaddedPicture dark = sections(0);
    ASSERT_TRUE(buffer.prepare(*bright, 3));
    const SkPicBuf* merged = buffer.merge(*bright);
    ASSERT_NE(merged, nullptr);
    EXPECT_LT(merged->bitsPerChannel, 32U);
    merged = buffer.merge(*dark);
    ASSERT_NE(merged, nullptr);
    EXPECT_EQ(merged->bitsPerChannel, 32U) << "as prepared";
}

} // namespace
