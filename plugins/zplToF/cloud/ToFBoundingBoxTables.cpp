#include "plugins/zplToF/cloud/ToFBoundingBoxTables.h"

namespace ToFBoundingBoxTables {

std::array<float, 24> vertices(float fHalfX, float fHalfY, float fHalfZ) {
    const float a = fHalfX;
    const float b = fHalfY;
    const float c = fHalfZ;
    return {
        -a, -b, -c, a, -b, -c, a, b, -c, -a, b, -c, // the face at -z
        -a, -b, c,  a, -b, c,  a, b, c,  -a, b, c,  // the face at +z
    };
}

const std::array<quint16, 24>& indices() {
    static constexpr std::array<quint16, 24> kIndices = {0, 1, 1, 2, 2, 3, 3, 0, 4, 5, 5, 6,
                                                         6, 7, 7, 4, 0, 4, 1, 5, 2, 6, 3, 7};
    return kIndices;
}

} // namespace ToFBoundingBoxTables
