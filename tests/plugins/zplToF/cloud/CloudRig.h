#pragma once

#include "plugins/zplToF/cloud/CkToFCloudBuilder.h"
#include "tests/support/TestPicture.h"
#include "zuCore/CkPicBufAPI.h"

#include <array>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>

/// Value range of a float picture, as a source of pictures states it.
inline void refreshRange(TestPicture& picture) {
    CkPicBufAPI::CalcFloatDataMinMax(*picture, picture->minValue, picture->maxValue, false);
}

/// A float picture with one value per pixel.
inline void fillFloats(TestPicture& picture, const std::function<float(quint32 x, quint32 y)>& value) {
    for (quint32 y = 0; y < picture->height; y++) {
        for (quint32 x = 0; x < picture->width; x++) {
            picture.set<float>(x, y, 0, value(x, y));
        }
    }
    refreshRange(picture);
}

inline const float NotANumber = std::numeric_limits<float>::quiet_NaN();
inline const float Infinite = std::numeric_limits<float>::infinity();

/// Colour i is blue i, green 255 - i, red 7 i: every index can be told from its colour.
inline const quint8* testColours() {
    static const std::array<quint8, 1024> table = [] {
        std::array<quint8, 1024> colours{};
        for (size_t i = 0; i < 256; i++) {
            colours[4 * i] = quint8(i);
            colours[4 * i + 1] = quint8(255 - i);
            colours[4 * i + 2] = quint8(7 * i);
            colours[4 * i + 3] = 99;
        }
        return colours;
    }();
    return table.data();
}

struct TestVertex {
    float x, y, z, red, green, blue;
};

inline TestVertex vertexAt(const CkToFCloudBuilder& builder, int index) {
    TestVertex vertex;
    std::memcpy(&vertex, builder.vertexBytes().constData() + index * CkToFCloudBuilder::kBytesPerVertex,
                sizeof vertex);
    return vertex;
}

/// Index of a vertex's colour in testColours.
inline int colourOf(const TestVertex& vertex) {
    return int(std::lround(vertex.blue * 255.0F));
}

inline quint32 indexAt(const CkToFCloudBuilder& builder, int index) {
    quint32 value = 0;
    std::memcpy(&value, builder.indexBytes().constData() + index * int(sizeof value), sizeof value);
    return value;
}

/// Neighbouring floats have neighbouring numbers.
inline qint64 orderOf(float value) {
    qint32 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits < 0 ? -qint64(bits & 0x7fffffff) : qint64(bits);
}

inline SkToFCloudParameters testParameters(bool lens = false) {
    SkToFCloudParameters parameters;
    parameters.pColourTable = testColours();
    parameters.opticalPath.compensateDistortion = lens;
    return parameters;
}
