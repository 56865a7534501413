#pragma once

#include "plugins/zplToF/pic/CkToFPicAPI.h"
#include "plugins/zplToF/pic/kernels/ToFKernelChoice.h"

#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

/// A picture in memory of its own, surrounded by guard bytes: before row 0, behind the pixels of every row
/// and behind the last row.
class TestPicture {
public:
    static constexpr quint8 guardByte = 0xA5;

    TestPicture(quint32 width, quint32 height, quint32 channels, EkImageDataType type, quint32 bits = 0,
                quint32 extraLineBytes = 0, size_t misalignment = 0) {
        pic.width = width;
        pic.height = height;
        pic.channels = channels;
        pic.dataType = type;
        pic.bitsPerChannel = bits == 0 ? 8 * sampleBytes(type) : bits;
        pic.storageFormat = EkDataStorageFormat::Interleaved;
        pic.lineSize = width * channels * sampleBytes(type) + extraLineBytes;
        front = 64 + misalignment;
        store.assign(front + size_t(pic.lineSize) * height + 64, guardByte);
        pic.data = store.data() + front;
        if (rowBytes() > 0) {
            for (quint32 y = 0; y < height; ++y) {
                std::memset(pic.row(y), 0, rowBytes());
            }
        }
    }
    TestPicture(const TestPicture&) = delete;
    TestPicture& operator=(const TestPicture&) = delete;

    size_t rowBytes() const { return size_t(pic.width) * pic.channels * sampleBytes(pic.dataType); }

    template <typename T>
    void set(quint32 x, quint32 y, quint32 channel, T value) {
        std::memcpy(pic.row(y) + (size_t(x) * pic.channels + channel) * sizeof(T), &value, sizeof(T));
    }
    template <typename T>
    T get(quint32 x, quint32 y, quint32 channel = 0) const {
        T value;
        std::memcpy(&value, pic.row(y) + (size_t(x) * pic.channels + channel) * sizeof(T), sizeof(T));
        return value;
    }
    /// Sample as a wide integer; 32-bit samples unsigned.
    qint64 at(quint32 x, quint32 y, quint32 channel = 0) const {
        switch (pic.dataType) {
        case EkImageDataType::Int8:
            return get<qint8>(x, y, channel);
        case EkImageDataType::UInt8:
            return get<quint8>(x, y, channel);
        case EkImageDataType::Int16:
            return get<qint16>(x, y, channel);
        case EkImageDataType::UInt16:
            return get<quint16>(x, y, channel);
        default:
            return get<quint32>(x, y, channel);
        }
    }
    void put(quint32 x, quint32 y, quint32 channel, qint64 value) {
        std::memcpy(pic.row(y) + (size_t(x) * pic.channels + channel) * sampleBytes(pic.dataType), &value,
                    sampleBytes(pic.dataType));
    }

    bool guardsIntact() const {
        size_t index = 0;
        for (; index < front; ++index) {
            if (store[index] != guardByte) {
                return false;
            }
        }
        for (quint32 y = 0; y < pic.height; ++y) {
            for (size_t byte = rowBytes(); byte < pic.lineSize; ++byte) {
                if (pic.row(y)[byte] != guardByte) {
                    return false;
                }
            }
        }
        for (index = front + size_t(pic.lineSize) * pic.height; index < store.size(); ++index) {
            if (store[index] != guardByte) {
                return false;
            }
        }
        return true;
    }

    SkPicBuf pic;
    std::vector<quint8> store;

private:
    size_t front = 0;
};

/// Random samples that use the given bits, every tenth pixel at or near the limits, some pixels dark.
inline void fillRandom(TestPicture& picture, std::mt19937& random, quint32 bits) {
    const bool isSigned =
        picture.pic.dataType == EkImageDataType::Int8 || picture.pic.dataType == EkImageDataType::Int16;
    const qint64 range = qint64(1) << bits;
    const qint64 low = isSigned ? -range / 2 : 0;
    for (quint32 y = 0; y < picture.pic.height; ++y) {
        for (quint32 x = 0; x < picture.pic.width; ++x) {
            const auto kind = random() % 20;
            for (quint32 channel = 0; channel < picture.pic.channels; ++channel) {
                qint64 value = low + qint64(random()) % range;
                if (kind == 0) {
                    value = random() % 2 == 0 ? low : low + range - 1;
                } else if (kind == 1) {
                    value = low + range / 2 + qint64(random() % 5) - (isSigned ? 2 : 0);
                } else if (kind == 2) {
                    value = isSigned ? 0 : low + range / 3;
                }
                picture.put(x, y, channel, value);
            }
        }
    }
}

/// Position of a float on the line of all floats, for distances in units in the last place.
inline qint64 floatPosition(float value) {
    qint32 bits;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits >= 0 ? qint64(bits) : qint64(std::numeric_limits<qint32>::min()) - bits;
}

inline qint64 ulpDistance(float first, float second) {
    const qint64 distance = floatPosition(first) - floatPosition(second);
    return distance < 0 ? -distance : distance;
}

/// Pins kernels for the life of the object.
class PinnedKernels {
public:
    explicit PinnedKernels(const SkToFKernels& kernels) { ToFKernelChoice::pin(&kernels); }
    ~PinnedKernels() { ToFKernelChoice::pin(nullptr); }
    PinnedKernels(const PinnedKernels&) = delete;
    PinnedKernels& operator=(const PinnedKernels&) = delete;
};
