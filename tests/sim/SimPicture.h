#pragma once

#include "zuCore/SkPicBuf.h"

#include <algorithm>
#include <vector>

/// A picture on memory of its own, with padded rows and a guard behind the last one, all filled with 0xA5.
class SimPicture : public SkPicBuf {
public:
    static constexpr quint8 FILL = 0xa5;

    SimPicture(quint32 columns, quint32 rows, quint32 samples, EkImageDataType type, quint32 bits,
               quint32 paddingBytes = 24) {
        width = columns;
        height = rows;
        channels = samples;
        bitsPerChannel = bits;
        dataType = type;
        lineSize = columns * samples * sampleBytes(type) + paddingBytes;
        m_memory.assign((size_t(lineSize) * rows + 64) / sizeof(quint64) + 1, 0xa5a5a5a5a5a5a5a5U);
        data = reinterpret_cast<quint8*>(m_memory.data());
    }
    SimPicture(const SimPicture&) = delete;
    SimPicture& operator=(const SimPicture&) = delete;

    double at(quint32 column, quint32 rowIndex, quint32 channel = 0) const {
        const size_t index = size_t(column) * channels + channel;
        switch (dataType) {
        case EkImageDataType::Int8:
            return reinterpret_cast<const qint8*>(row(rowIndex))[index];
        case EkImageDataType::UInt8:
            return row(rowIndex)[index];
        case EkImageDataType::Int16:
            return reinterpret_cast<const qint16*>(row(rowIndex))[index];
        case EkImageDataType::UInt16:
            return reinterpret_cast<const quint16*>(row(rowIndex))[index];
        default:
            return double(reinterpret_cast<const float*>(row(rowIndex))[index]);
        }
    }

    bool untouchedRow(quint32 rowIndex) const {
        return std::all_of(row(rowIndex), row(rowIndex) + lineSize, [](quint8 byte) { return byte == FILL; });
    }

    /// Whether padding and guard are as they were.
    bool paddingIntact() const {
        const size_t packed = size_t(width) * channels * sampleBytes(dataType);
        for (quint32 line = 0; line < height; ++line) {
            if (!std::all_of(row(line) + packed, row(line) + lineSize,
                             [](quint8 byte) { return byte == FILL; })) {
                return false;
            }
        }
        const quint8* guard = data + size_t(lineSize) * height;
        return std::all_of(guard, guard + 64, [](quint8 byte) { return byte == FILL; });
    }

    bool samePixels(const SimPicture& other, quint32 otherFirstRow = 0) const {
        for (quint32 line = 0; line < height; ++line) {
            for (quint32 column = 0; column < width; ++column) {
                for (quint32 channel = 0; channel < channels; ++channel) {
                    if (at(column, line, channel) != other.at(column, otherFirstRow + line, channel)) {
                        return false;
                    }
                }
            }
        }
        return true;
    }

private:
    std::vector<quint64> m_memory;
};
