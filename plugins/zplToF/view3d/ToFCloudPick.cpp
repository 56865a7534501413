#include "plugins/zplToF/view3d/ToFCloudPick.h"

#include "plugins/zplToF/cloud/CkToFCloudBuilder.h"

#include <QMatrix4x4>
#include <QPointF>
#include <QSizeF>
#include <QVector4D>
#include <array>
#include <cmath>
#include <cstring>

namespace {

constexpr double kPixelsAround = 10.0;

} // namespace

float ToFCloudPick::depthAt(const QByteArray& vertexBytes, int iVertices, const QMatrix4x4& toClip,
                            const QSizeF& window, const QPointF& place) {
    float nearest = 0.0F;
    for (int i = 0; i < iVertices; ++i) {
        std::array<float, 3> point;
        std::memcpy(point.data(), vertexBytes.constData() + qsizetype(i) * CkToFCloudBuilder::kBytesPerVertex,
                    sizeof point);
        const QVector4D clip = toClip * QVector4D(point[0], point[1], point[2], 1.0F);
        const float depth = clip.w();
        // Behind the camera, or farther than the nearest so far.
        if (!(depth > 0.0F) || (nearest > 0.0F && depth >= nearest)) {
            continue;
        }
        const double x = (double(clip.x() / depth) + 1.0) * 0.5 * window.width();
        const double y = (1.0 - double(clip.y() / depth)) * 0.5 * window.height();
        if (std::abs(x - place.x()) <= kPixelsAround && std::abs(y - place.y()) <= kPixelsAround) {
            nearest = depth;
        }
    }
    return nearest;
}
