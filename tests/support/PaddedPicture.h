#pragma once

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

/// A picture in memory of the test's own, rows longer than their pixels by an odd number of bytes, sentinels
/// behind every row and around the whole.
class PaddedPicture {
public:
    static constexpr quint8 sentinel = 0xA5;
    static constexpr size_t margin = 64;

    PaddedPicture(quint32 width, quint32 height, quint32 channels, EkImageDataType type, quint32 bits = 0,
                  quint32 padding = 13) {
        m_picBuf.width = width;
        m_picBuf.height = height;
        m_picBuf.channels = channels;
        m_picBuf.dataType = type;
        m_picBuf.bitsPerChannel = bits != 0 ? bits : 8 * sampleBytes(type);
        m_picBuf.lineSize = rowBytes() + padding;
        m_picBuf.storageFormat = EkDataStorageFormat::Interleaved;
        m_bytes.assign(size_t(m_picBuf.lineSize) * height + 2 * margin, sentinel);
        m_picBuf.data = m_bytes.data() + margin;
        for (quint32 y = 0; y < height; ++y) {
            std::memset(m_picBuf.row(y), 0, rowBytes());
        }
    }
    PaddedPicture(const PaddedPicture&) = delete;
    PaddedPicture& operator=(const PaddedPicture&) = delete;
    PaddedPicture(PaddedPicture&&) = default;

    SkPicBuf& operator*() { return m_picBuf; }
    SkPicBuf* operator->() { return &m_picBuf; }

    template <typename T>
    T at(quint32 x, quint32 y, quint32 c = 0) const {
        T value;
        std::memcpy(&value, m_picBuf.row(y) + (size_t(x) * m_picBuf.channels + c) * sizeof(T), sizeof(T));
        return value;
    }

    template <typename T>
    void set(quint32 x, quint32 y, quint32 c, T value) {
        std::memcpy(m_picBuf.row(y) + (size_t(x) * m_picBuf.channels + c) * sizeof(T), &value, sizeof(T));
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

    /// Every byte that is no pixel still holds the sentinel.
    bool sentinelsIntact() const {
        const auto intact = [](const quint8* first, const quint8* last) {
            return std::all_of(first, last, [](quint8 byte) { return byte == sentinel; });
        };
        const quint8* const end = m_bytes.data() + m_bytes.size();
        bool all = intact(m_bytes.data(), m_bytes.data() + margin) && intact(end - margin, end);
        for (quint32 y = 0; y < m_picBuf.height; ++y) {
            const quint8* const row = m_bytes.data() + margin + size_t(y) * m_picBuf.lineSize;
            all = all && intact(row + rowBytes(), row + m_picBuf.lineSize);
        }
        return all;
    }

    std::vector<quint8> bytes() const { return m_bytes; }

private:
    quint32 rowBytes() const { return m_picBuf.width * m_picBuf.channels * sampleBytes(m_picBuf.dataType); }

    SkPicBuf m_picBuf;
    std::vector<quint8> m_bytes;
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
