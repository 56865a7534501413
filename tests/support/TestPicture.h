#pragma once

#include "zuCore/SampleVisitor.h"
#include "zuCore/SkPicBuf.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <functional>
#include <type_traits>
#include <vector>

/// The code of a C++ sample type.
template <typename T>
struct SampleTypeOf {
    static constexpr EkImageDataType value = [] {
        if constexpr (std::is_floating_point_v<T>) {
            return sizeof(T) == 4 ? EkImageDataType::Float32 : EkImageDataType::Float64;
        } else {
            constexpr EkImageDataType asSigned[] = {EkImageDataType::Int8, EkImageDataType::Int16,
                                                    EkImageDataType::Int32, EkImageDataType::Int64};
            constexpr EkImageDataType asUnsigned[] = {EkImageDataType::UInt8, EkImageDataType::UInt16,
                                                      EkImageDataType::UInt32, EkImageDataType::UInt64};
            constexpr int size = std::countr_zero(sizeof(T));
            return std::is_signed_v<T> ? asSigned[size] : asUnsigned[size];
        }
    }();
};

/// A picture in memory of its own, between guard bytes: before the first row, after the samples of every row
/// and after the last row.
class TestPicture {
public:
    static constexpr quint8 kGuardByte = 0xA5;
    static constexpr size_t kMargin = 64;

    /// Zeroed. bits 0: all bits of a sample; padding: guard bytes after each row; misalignment: bytes offset
    /// of the first row from the heap's alignment.
    TestPicture(quint32 width, quint32 height, quint32 channels, EkImageDataType type, quint32 bits = 0,
                quint32 padding = 0, size_t misalignment = 0)
        : m_front(kMargin + misalignment) {
        static_cast<SkPicBufInfo&>(m_picBuf) =
            SkPicBufInfo::of(width, height, channels, type, bits != 0 ? bits : 8 * sampleBytes(type));
        m_picBuf.lineSize += padding;
        m_bytes.assign(m_front + size_t(m_picBuf.lineSize) * height + kMargin, kGuardByte);
        m_picBuf.data = m_bytes.data() + m_front;
        for (quint32 y = 0; y < height && rowBytes() > 0; ++y) {
            std::memset(m_picBuf.row(y), 0, rowBytes());
        }
    }
    TestPicture(const TestPicture&) = delete;
    TestPicture& operator=(const TestPicture&) = delete;
    TestPicture(TestPicture&&) = default;

    SkPicBuf& operator*() { return m_picBuf; }
    const SkPicBuf& operator*() const { return m_picBuf; }
    SkPicBuf* operator->() { return &m_picBuf; }
    const SkPicBuf* operator->() const { return &m_picBuf; }

    template <typename T>
    T at(quint32 x, quint32 y, quint32 c = 0) const {
        T value;
        std::memcpy(&value, place(x, y, c, sizeof(T)), sizeof(T));
        return value;
    }
    template <typename T>
    void set(quint32 x, quint32 y, quint32 c, T value) {
        std::memcpy(place(x, y, c, sizeof(T)), &value, sizeof(T));
    }

    /// An integer sample of any type but UInt64.
    qint64 integerAt(quint32 x, quint32 y, quint32 c = 0) const {
        return visitIntegerSamples(m_picBuf.dataType,
                                   [&](auto zero) { return qint64(at<decltype(zero)>(x, y, c)); });
    }
    /// The low bytes of the value, as many as the sample has.
    void setInteger(quint32 x, quint32 y, quint32 c, qint64 value) {
        const quint32 bytes = sampleBytes(m_picBuf.dataType);
        std::memcpy(place(x, y, c, bytes), &value, bytes);
    }
    /// A sample of any of these types as a number; floats too.
    double valueAt(quint32 x, quint32 y, quint32 c = 0) const {
        return m_picBuf.dataType == EkImageDataType::Float32 ? double(at<float>(x, y, c))
                                                             : double(integerAt(x, y, c));
    }

    template <typename T>
    void fill(const std::function<T(quint32 x, quint32 y, quint32 c)>& value) {
        for (quint32 y = 0; y < m_picBuf.height; ++y) {
            for (quint32 x = 0; x < m_picBuf.width; ++x) {
                for (quint32 c = 0; c < m_picBuf.channels; ++c) {
                    set<T>(x, y, c, value(x, y, c));
                }
            }
        }
    }
    /// Turns the samples into guard bytes, so that isUntouched() tells what was never written.
    void poison() { std::fill(m_bytes.begin(), m_bytes.end(), kGuardByte); }
    bool isUntouched(quint32 y) const {
        return isGuard(m_picBuf.row(y), m_picBuf.row(y) + m_picBuf.lineSize);
    }

    /// Every byte that is no sample still is a guard byte.
    bool guardsIntact() const {
        const quint8* const first = m_bytes.data();
        const quint8* const pixels = first + m_front;
        bool intact = isGuard(first, pixels);
        for (quint32 y = 0; y < m_picBuf.height; ++y) {
            const quint8* const row = pixels + size_t(y) * m_picBuf.lineSize;
            // A test may have made the rows shorter than their samples.
            intact = intact &&
                     (rowBytes() >= m_picBuf.lineSize || isGuard(row + rowBytes(), row + m_picBuf.lineSize));
        }
        const quint8* const end = first + m_bytes.size();
        return intact && isGuard(end - kMargin, end);
    }

    /// All memory, guards included.
    const std::vector<quint8>& bytes() const { return m_bytes; }
    void copyBytes(const TestPicture& other) {
        m_bytes = other.m_bytes; // of the same size, so that the picture stays where it is
    }

private:
    size_t rowBytes() const {
        return size_t(m_picBuf.width) * m_picBuf.channels * sampleBytes(m_picBuf.dataType);
    }
    quint8* place(quint32 x, quint32 y, quint32 c, size_t bytes) const {
        return const_cast<quint8*>(m_picBuf.row(y)) + (size_t(x) * m_picBuf.channels + c) * bytes;
    }
    static bool isGuard(const quint8* first, const quint8* last) {
        return std::all_of(first, last, [](quint8 byte) { return byte == kGuardByte; });
    }

    SkPicBuf m_picBuf;
    std::vector<quint8> m_bytes;
    size_t m_front;
};

/// A TestPicture whose rows are, unless told otherwise, longer than their samples by an odd number of bytes.
class PaddedPicture : public TestPicture {
public:
    PaddedPicture(quint32 width, quint32 height, quint32 channels, EkImageDataType type, quint32 bits = 0,
                  quint32 padding = 13)
        : TestPicture(width, height, channels, type, bits, padding) {}
};

/// Reads a sample of any picture.
template <typename T>
T sampleAt(const SkPicBuf& picBuf, quint32 x, quint32 y, quint32 c = 0) {
    T value;
    std::memcpy(&value, picBuf.row(y) + (size_t(x) * picBuf.channels + c) * sizeof(T), sizeof(T));
    return value;
}

template <typename T>
void setSample(SkPicBuf& picBuf, quint32 x, quint32 y, quint32 c, T value) {
    std::memcpy(picBuf.row(y) + (size_t(x) * picBuf.channels + c) * sizeof(T), &value, sizeof(T));
}
