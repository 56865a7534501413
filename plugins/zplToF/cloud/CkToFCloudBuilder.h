#pragma once

#include "plugins/zplToF/cloud/SkToFDepthPictures.h"
#include "plugins/zplToF/cloud/SkToFOpticalPath.h"
#include "plugins/zplToF/cloud/SkToFPoint.h"
#include "zuCore/CkLut.h"

#include <QByteArray>

#include <array>
#include <memory>
#include <optional>
#include <span>

/// How a point is drawn.
enum class EkToFVertexLayout {
    Points, ///< one vertex a point
    Quads   ///< four vertices and six indices a point
};

/// Parameters of a cloud besides its pictures.
struct SkToFCloudParameters {
    SkToFOpticalPath opticalPath;
    float zZoom = 1.0F; ///< stretches the depth axis, above 0
    /// 256 colours of 4 bytes: blue, green, red, ignored. Not owned; read during build only.
    const quint8* pColourTable = nullptr;
    /// First contrast entry of the view's look-up table; left out when its inHigh exceeds the sample range.
    std::optional<CkLut::CkCompContrast> contrast;
    EkToFVertexLayout layout = EkToFVertexLayout::Points;
};

/// Size of the measured volume, for the label.
struct SkToFCloudDimensions {
    double widthM = 0.0;  ///< m, across the picture at the far end of the range
    double heightM = 0.0; ///< m
    double depthM = 0.0;  ///< m

    bool operator==(const SkToFCloudDimensions&) const = default;
};

/// Turns depth pictures into the vertices, indices and export points of a coloured cloud.
///
/// No widget, no scene; one thread at a time. Results describe the last successful build; their storage is
/// reused. Byte arrays may be passed on without a copy (implicit sharing); the builder then writes its next
/// result to other memory.
class CkToFCloudBuilder {
public:
    static constexpr int kBytesPerVertex = 24; ///< x, y, z, red, green, blue as floats, colours 0 to 1
    static constexpr int kColourOffset = 12;   ///< byte of red in a vertex
    static constexpr int kIndicesPerPoint = 6;

    CkToFCloudBuilder();
    ~CkToFCloudBuilder();
    CkToFCloudBuilder(CkToFCloudBuilder&& other) noexcept;
    CkToFCloudBuilder& operator=(CkToFCloudBuilder&& other) noexcept;
    CkToFCloudBuilder(const CkToFCloudBuilder&) = delete;
    CkToFCloudBuilder& operator=(const CkToFCloudBuilder&) = delete;

    /// Builds the cloud. An unsupported sample type, or pictures without any finite value, give a cloud
    /// without points, which is a success.
    /// False, and nothing changes, without depth data or colour table, when a descriptor is impossible, the
    /// depth picture has more than one channel, the confidence picture is not one float channel of the same
    /// size, rows begin inside a sample, the picture has 2^28 pixels or more, or memory runs out. Never
    /// throws.
    bool build(const SkToFDepthPictures& pictures, const SkToFCloudParameters& parameters);

    /// Frees the cached factors of the orthogonal correction. Only saves memory: they are stored with the
    /// values they were computed from, so a build never uses outdated ones.
    void freeOrthoFactorPic();

    /// Selects the plain loop over pixels, which defines the result, instead of the vector code. Both give
    /// the same points in the same order with equal colours and z; x and y differ by at most 2 units in the
    /// last place. For tests and benchmarks.
    void setPlainLoop(bool bPlainLoop);
    /// Name of the instruction set that the last build used, "plain" for the plain loop.
    const char* lastTargetName() const;

    /// width x height x verticesPerPoint vertices; those after the last point are zero.
    const QByteArray& vertexBytes() const;
    /// 6 x width x height unsigned 32-bit indices of the quads layout; empty for points. Those after the last
    /// point are zero and draw nothing.
    const QByteArray& indexBytes() const;
    /// In the order of the pixels. Valid until the next build or move.
    std::span<const SkToFPoint> exportPoints() const;

    int pointCount() const;
    int verticesPerPoint() const; ///< 1 or 4
    int vertexCount() const;      ///< verticesPerPoint x pointCount
    int indexCount() const;       ///< 6 x width x height for quads whatever the point count; 0 for points
    int width() const;            ///< pixels of the depth picture of the last build; 0 before it
    int height() const;
    /// Whether the lens model was used.
    bool usedLens() const;
    /// Empty when the lens model was not used: then nothing has a size in metres.
    std::optional<SkToFCloudDimensions> dimensions() const;
    /// Half extents of the bounding box in scene units: x, y, z.
    std::array<float, 3> boxHalfExtents() const;
    /// Edge of a quad in scene units, 2 / width. The point-size parameter of the material is twice that.
    float pointSpacing() const;

private:
    class CkPrivate;
    std::unique_ptr<CkPrivate> m_d;
};
