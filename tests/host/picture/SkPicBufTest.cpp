// What other programs, recordings and plug-ins rely on: the order of the fields and the numbers of the codes.

#include "zuCore/SkPicBuf.h"

#include <cstddef>
#include <gtest/gtest.h>

namespace {

// The structures are no standard layout for the compiler, since one derives from the other; it is one in
// fact.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

TEST(SkPicBufInfo, FieldsStandInTheAgreedOrder) {
    EXPECT_EQ(offsetof(SkPicBufInfo, width), 0U);
    EXPECT_EQ(offsetof(SkPicBufInfo, height), 4U);
    EXPECT_EQ(offsetof(SkPicBufInfo, lineSize), 8U);
    EXPECT_EQ(offsetof(SkPicBufInfo, channels), 12U);
    EXPECT_EQ(offsetof(SkPicBufInfo, bitsPerChannel), 16U);
    EXPECT_EQ(offsetof(SkPicBufInfo, linePadding), 20U);
    EXPECT_EQ(offsetof(SkPicBufInfo, dataType), 24U);
    EXPECT_EQ(offsetof(SkPicBufInfo, storageFormat), 28U);
    EXPECT_EQ(offsetof(SkPicBufInfo, colorFilterArray), 32U);
    EXPECT_EQ(offsetof(SkPicBufInfo, layoutFlag), 36U);
}

TEST(SkPicBuf, BeginsWithItsDescriptor) {
    EXPECT_EQ(offsetof(SkPicBuf, width), 0U);
    EXPECT_EQ(offsetof(SkPicBuf, layoutFlag), 36U);
    EXPECT_EQ(offsetof(SkPicBuf, data), 40U);
    EXPECT_EQ(offsetof(SkPicBuf, minValue), 48U);
    EXPECT_EQ(offsetof(SkPicBuf, maxValue), 52U);
}

#pragma GCC diagnostic pop

TEST(SampleTypes, HaveTheirNumbers) {
    const EkImageDataType types[] = {
        EkImageDataType::Unknown, EkImageDataType::Int8,    EkImageDataType::UInt8,
        EkImageDataType::Int16,   EkImageDataType::UInt16,  EkImageDataType::Int32,
        EkImageDataType::UInt32,  EkImageDataType::Int64,   EkImageDataType::UInt64,
        EkImageDataType::Float32, EkImageDataType::Float64, EkImageDataType::Other16};
    const quint32 bytes[] = {1, 1, 1, 2, 2, 4, 4, 8, 8, 4, 8, 2};
    for (quint32 number = 0; number < std::size(types); ++number) {
        EXPECT_EQ(quint32(types[number]), number);
        EXPECT_EQ(sampleBytes(EkImageDataType(number)), bytes[number]) << number;
    }
    EXPECT_EQ(sampleBytes(EkImageDataType(12)), 1U);
    EXPECT_EQ(sampleBytes(EkImageDataType(0xffffffffU)), 1U);
    EXPECT_EQ(sizeof(EkImageDataType), 4U);
}

TEST(PictureCodes, HaveTheirNumbers) {
    EXPECT_EQ(quint32(EkDataStorageFormat::Interleaved), 1U);
    EXPECT_EQ(quint32(EkColorFilterArray::None), 0U);
    EXPECT_EQ(quint32(EkColorFilterArray::RawX2AandB), 8U);
    EXPECT_EQ(quint32(EkColorFilterArray::RawAminusB), 9U);
    EXPECT_EQ(quint32(EkColorFilterArray::RawX3Hybrid), 13U);
    EXPECT_EQ(int(EkDepthDataType::Generic), 0);
    EXPECT_EQ(int(EkDepthDataType::PhaseShift), 1);
    EXPECT_EQ(int(EkDepthDataType::Depth), 2);
    EXPECT_EQ(sizeof(EkDataStorageFormat), 4U);
    EXPECT_EQ(sizeof(EkColorFilterArray), 4U);
}

} // namespace
