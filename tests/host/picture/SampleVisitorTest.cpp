#include "zuCore/SampleVisitor.h"

#include <gtest/gtest.h>
#include <typeinfo>

namespace {

const auto kTypeOf = [](auto zero) {
    EXPECT_EQ(zero, decltype(zero)());
    return &typeid(zero);
};

struct SkExpectation {
    EkImageDataType dataType;
    const std::type_info& type;
};

const SkExpectation kIntegers[] = {
    {EkImageDataType::Int8, typeid(qint8)},   {EkImageDataType::UInt8, typeid(quint8)},
    {EkImageDataType::Int16, typeid(qint16)}, {EkImageDataType::UInt16, typeid(quint16)},
    {EkImageDataType::Int32, typeid(qint32)}, {EkImageDataType::UInt32, typeid(quint32)},
    {EkImageDataType::Int64, typeid(qint64)}, {EkImageDataType::UInt64, typeid(quint64)}};

TEST(SampleVisitor, CallsWithTheTypeOfTheSamples) {
    for (const auto& [dataType, type] : kIntegers) {
        EXPECT_EQ(*visitIntegerSamples(dataType, kTypeOf), type) << int(dataType);
        EXPECT_EQ(*visitSamples(dataType, kTypeOf), type) << int(dataType);
    }
    EXPECT_EQ(*visitSamples(EkImageDataType::Float32, kTypeOf), typeid(float));
    EXPECT_EQ(*visitSamples(EkImageDataType::Float64, kTypeOf), typeid(double));
}

TEST(SampleVisitor, IsNotCalledForOtherTypes) {
    int calls = 0;
    const auto count = [&calls](auto) {
        ++calls;
        return true;
    };
    for (const EkImageDataType dataType : {EkImageDataType::Unknown, EkImageDataType::Other16,
                                           EkImageDataType(12), EkImageDataType(0xffffffffU)}) {
        EXPECT_FALSE(visitSamples(dataType, count));
        EXPECT_EQ(visitSamples(dataType, kTypeOf), nullptr);
    }
    EXPECT_FALSE(visitIntegerSamples(EkImageDataType::Float32, count));
    EXPECT_FALSE(visitIntegerSamples(EkImageDataType::Float64, count));
    EXPECT_EQ(calls, 0);
}

TEST(SampleVisitor, LoadsAndStoresUnalignedSamples) {
    quint8 row[1 + 3 * sizeof(quint32)] = {};
    storeSample<quint32>(row + 1, 1, 0x04030201U);
    const quint8 expected[] = {0, 0, 0, 0, 0, 1, 2, 3, 4, 0, 0, 0, 0};
    for (size_t i = 0; i < std::size(row); ++i) {
        EXPECT_EQ(row[i], expected[i]) << i;
    }
    EXPECT_EQ(loadSample<quint32>(row + 1, 1), 0x04030201U);
    EXPECT_EQ(loadSample<qint16>(row + 1, 3), 0x0403);
}

} // namespace
