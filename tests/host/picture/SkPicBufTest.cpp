// Other programs, recordings and plug-ins depend on the order of the fields and the numbers of the codes.

#include "zuCore/SkPicBuf.h"

#include <cstddef>
#include <gtest/gtest.h>

namespace {

// Formally these are not standard-layout types, because one derives from the other; in practice the layout is
// fixed.
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

TEST(SkPicBufInfo, OfDescribesPackedInterleavedRows) {
    const SkPicBufInfo info = SkPicBufInfo::of(7, 5, 3, EkImageDataType::Int16, 12);
    EXPECT_EQ(info.width, 7U);
    EXPECT_EQ(info.height, 5U);
    EXPECT_EQ(info.channels, 3U);
    EXPECT_EQ(info.lineSize, 42U);
    EXPECT_EQ(info.linePadding, 0U);
    EXPECT_EQ(info.bitsPerChannel, 12U);
    EXPECT_EQ(info.dataType, EkImageDataType::Int16);
    EXPECT_EQ(info.storageFormat, EkDataStorageFormat::Interleaved);
    EXPECT_EQ(info.colorFilterArray, EkColorFilterArray::None);
    EXPECT_FALSE(info.layoutFlag);
}

TEST(SkPicBufInfo, RowsArePaddedToAMultiple) {
    SkPicBufInfo info = SkPicBufInfo::of(7, 5, 3, EkImageDataType::Int16, 12);
    const quint32 paddings[] = {1, 2, 42, 43, 64, 256};
    const quint32 lineSizes[] = {42, 42, 42, 43, 64, 256};
    for (size_t i = 0; i < std::size(paddings); ++i) {
        info.padRows(paddings[i]);
        EXPECT_EQ(info.lineSize, lineSizes[i]) << paddings[i];
        EXPECT_EQ(info.linePadding, paddings[i]);
    }
}

TEST(SkPicBufInfo, ARowBeyond32BitsHasNoLineSize) {
    const auto lineSize = [](quint32 width, quint32 channels, EkImageDataType type) {
        return SkPicBufInfo::of(width, 1, channels, type, 8).lineSize;
    };
    EXPECT_EQ(lineSize(0xffffffffU, 1, EkImageDataType::UInt8), 0xffffffffU);
    EXPECT_EQ(lineSize(0x80000000U, 2, EkImageDataType::UInt8), 0U);
    EXPECT_EQ(lineSize(0x20000000U, 1, EkImageDataType::Float64), 0U);
    EXPECT_EQ(lineSize(0xffffffffU, 0xffffffffU, EkImageDataType::Float64), 0U);
    SkPicBufInfo padded = SkPicBufInfo::of(0xfffffff1U, 1, 1, EkImageDataType::UInt8, 8);
    padded.padRows(256);
    EXPECT_EQ(padded.lineSize, 0U);
}

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
