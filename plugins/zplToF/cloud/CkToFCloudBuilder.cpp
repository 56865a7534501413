#include "plugins/zplToF/cloud/CkToFCloudBuilder.h"

#include "plugins/zplToF/cloud/CkToFReusedBytes.h"
#include "plugins/zplToF/cloud/ToFCloudLoops.h"
#include "plugins/zplToF/pic/CkToFPicAPI.h"
#include "zuCore/CkPicture.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

namespace {

constexpr quint64 kPixelLimit = 1ULL << 28; ///< indices of quads and sizes in bytes stay within their types

bool isAligned(const SkPicBuf& picture) {
    const quint32 bytes = sampleBytes(picture.dataType);
    return reinterpret_cast<quintptr>(picture.data) % bytes == 0 && picture.lineSize % bytes == 0;
}

bool isUsable(const SkToFDepthPictures& pictures) {
    const SkPicBuf& depth = pictures.depthPic;
    if (!depth.data || depth.channels != 1 || !CkPicBufAPI::isValid(depth) || !isAligned(depth) ||
        quint64(depth.width) * depth.height >= kPixelLimit) {
        return false;
    }
    const SkPicBuf& confidence = pictures.confidencePic;
    return !confidence.data ||
           (CkPicBufAPI::isValid(confidence) && confidence.dataType == EkImageDataType::Float32 &&
            isAligned(confidence) && confidence.channels == 1 && confidence.width == depth.width &&
            confidence.height == depth.height);
}

/// The largest finite depth of the pixels that CkToFPicAPI::findMaxDepthClipConfidence searches, at least
/// fStart. CkToFPicAPI produces finite depths only, so this slow loop runs only for pictures of other origin.
float largestFiniteDepth(const SkToFDepthPictures& pictures, float fLimit, float fStart) {
    float largest = fStart;
    for (quint32 y = 0; y < pictures.depthPic.height; ++y) {
        const auto* const depths = reinterpret_cast<const float*>(pictures.depthPic.row(y));
        const auto* const confidences = reinterpret_cast<const float*>(pictures.confidencePic.row(y));
        for (quint32 x = 0; x < pictures.depthPic.width; ++x) {
            // The bounds of that search, not SkToFConfidenceRule: 0 never counts, whatever the kind of the
            // picture.
            if (confidences[x] > 0.0F && confidences[x] <= fLimit && std::isfinite(depths[x])) {
                largest = std::max(largest, depths[x]);
            }
        }
    }
    return largest;
}

/// The upper end of the scales of colour, depth axis and range.
float largestValue(const SkToFDepthPictures& pictures, float fThreshold) {
    const float all = pictures.depthPic.maxValue;
    float trusted = all;
    if (pictures.depthPic.dataType != EkImageDataType::Float32 || !pictures.confidencePic.data ||
        !(fThreshold > 0.0F) ||
        !CkToFPicAPI::findMaxDepthClipConfidence(pictures.depthPic, pictures.confidencePic, trusted,
                                                 fThreshold)) {
        return all;
    }
    if (std::isfinite(trusted)) {
        return trusted;
    }
    const float finite = largestFiniteDepth(pictures, fThreshold, -1.0F);
    return finite < 0.0F ? all : finite;
}

/// Writes the two triangles of each point from iFirst to iEnd - 1.
void writeQuadIndices(char* pBytes, qsizetype iFirst, qsizetype iEnd) {
    constexpr std::array<quint32, CkToFCloudBuilder::kIndicesPerPoint> corners = {0, 1, 2, 2, 3, 0};
    for (qsizetype point = iFirst; point < iEnd; point++) {
        std::array<quint32, CkToFCloudBuilder::kIndicesPerPoint> indices;
        for (size_t i = 0; i < indices.size(); i++) {
            indices[i] = quint32(4 * point) + corners[i];
        }
        std::memcpy(pBytes + point * qsizetype(sizeof indices), indices.data(), sizeof indices);
    }
}

/// The values that a picture of orthogonal factors was computed from.
struct SkOrthoKey {
    double cellMM = 0.0, resolutionRatio = 0.0, offsetXMM = 0.0, offsetYMM = 0.0, focalMM = 0.0;
    bool operator==(const SkOrthoKey&) const = default;
};

} // namespace

class CkToFCloudBuilder::CkPrivate {
public:
    bool reserve(const SkToFCloudScales& scales, EkToFVertexLayout newLayout);
    bool ensureOrthoFactors(const SkToFCloudScales& scales);
    void build(const SkToFDepthPictures& pictures, const SkToFCloudScales& newScales,
               const SkToFCloudParameters& parameters);
    void writeIndices();

    bool plainLoop = false;
    const char* targetName = "plain";
    EkToFVertexLayout layout = EkToFVertexLayout::Points;
    SkToFCloudScales scales;
    int points = 0;

    CkToFReusedBytes vertices; ///< tagged with the bytes from the start that may not be zero
    CkToFReusedBytes indices;  ///< tagged with the points that have indices
    std::unique_ptr<SkToFPoint[]> exported;
    size_t exportCapacity = 0;

    CkPicture orthoFactorPic;
    SkOrthoKey orthoKey;
    std::vector<double> columns;
    std::vector<float> bounce;
};

namespace {

qsizetype bytesPerPoint(EkToFVertexLayout layout) {
    return CkToFCloudBuilder::kBytesPerVertex * (layout == EkToFVertexLayout::Quads ? 4 : 1);
}

} // namespace

/// Does everything that can fail. The results of the last build are unchanged.
bool CkToFCloudBuilder::CkPrivate::reserve(const SkToFCloudScales& newScales, EkToFVertexLayout newLayout) {
    const size_t pixels = size_t(newScales.width) * newScales.height;
    vertices.prepare(qsizetype(pixels) * bytesPerPoint(newLayout));
    indices.prepare(
        newLayout == EkToFVertexLayout::Quads ? qsizetype(pixels * kIndicesPerPoint * sizeof(quint32)) : 0);
    columns.resize(newScales.width + ToFCloudLoops::kColumnSlack);
    bounce.resize(ToFCloudLoops::kBouncePoints * 24);
    if (newScales.correctRadially && !ensureOrthoFactors(newScales)) {
        return false;
    }
    if (exportCapacity != pixels) {
        exported = std::make_unique_for_overwrite<SkToFPoint[]>(pixels + ToFCloudLoops::kExportSlack);
        exportCapacity = pixels;
    }
    return true;
}

bool CkToFCloudBuilder::CkPrivate::ensureOrthoFactors(const SkToFCloudScales& s) {
    const SkOrthoKey key{s.cellMM, s.resolutionRatio, s.offsetXMM, s.offsetYMM, s.focalMM};
    SkPicBuf& factorPic = orthoFactorPic.picBuf();
    const bool sameSize =
        factorPic.data != nullptr && factorPic.width == s.width && factorPic.height == s.height;
    if (sameSize && key == orthoKey) {
        return true;
    }
    const SkPicBufInfo info = SkPicBufInfo::of(s.width, s.height, 1, EkImageDataType::Float32, 32);
    if (!sameSize && !orthoFactorPic.allocate(info, false)) {
        return false;
    }
    orthoKey = key;
    for (quint32 y = 0; y < s.height; y++) {
        float* factors = reinterpret_cast<float*>(factorPic.row(y));
        const double dy = s.chipYMM(y);
        for (quint32 x = 0; x < s.width; x++) {
            const double dx = s.chipXMM(x);
            factors[x] = float(s.focalMM / std::sqrt(dx * dx + dy * dy + s.focalMM * s.focalMM));
        }
    }
    return true;
}

void CkToFCloudBuilder::CkPrivate::build(const SkToFDepthPictures& pictures,
                                         const SkToFCloudScales& newScales,
                                         const SkToFCloudParameters& parameters) {
    layout = parameters.layout;
    scales = newScales;
    char* bytes = vertices.begin();
    const qsizetype size = vertices.current().size();
    const SkToFCloudInput input{pictures,
                                scales,
                                parameters.pColourTable,
                                orthoFactorPic.picBuf(),
                                columns.data(),
                                layout == EkToFVertexLayout::Quads ? 4 : 1};
    const SkToFCloudOutput output{reinterpret_cast<float*>(bytes), exported.get(), bounce.data()};
    points =
        plainLoop ? ToFCloudLoops::buildPlain(input, output) : ToFCloudLoops::buildByVectors(input, output);
    targetName = plainLoop ? "plain" : ToFCloudLoops::vectorTargetName();

    const qsizetype end = points * bytesPerPoint(layout);
    const qsizetype slackEnd = end + qsizetype(ToFCloudLoops::kSlackPoints) * bytesPerPoint(layout);
    const qsizetype dirty = vertices.tag() < 0 ? size : std::min(size, std::max(vertices.tag(), slackEnd));
    std::memset(bytes + end, 0, size_t(dirty - end));
    vertices.setTag(end);
    writeIndices();
}

void CkToFCloudBuilder::CkPrivate::writeIndices() {
    constexpr qsizetype stride = kIndicesPerPoint * qsizetype(sizeof(quint32));
    char* bytes = indices.begin();
    if (layout != EkToFVertexLayout::Quads) {
        return;
    }
    const qsizetype written = indices.tag();
    const qsizetype all = indices.current().size() / stride;
    writeQuadIndices(bytes, std::max<qsizetype>(written, 0), points);
    const qsizetype used = written < 0 ? all : written;
    if (used > points) {
        std::memset(bytes + points * stride, 0, size_t((used - points) * stride));
    }
    indices.setTag(points);
}

CkToFCloudBuilder::CkToFCloudBuilder() : m_d(std::make_unique<CkPrivate>()) {}
CkToFCloudBuilder::~CkToFCloudBuilder() = default;
CkToFCloudBuilder::CkToFCloudBuilder(CkToFCloudBuilder&& other) noexcept = default;
CkToFCloudBuilder& CkToFCloudBuilder::operator=(CkToFCloudBuilder&& other) noexcept = default;

bool CkToFCloudBuilder::build(const SkToFDepthPictures& pictures, const SkToFCloudParameters& parameters) {
    if (!isUsable(pictures) || !parameters.pColourTable) {
        return false;
    }
    const float largest = largestValue(pictures, parameters.opticalPath.confidenceThreshold);
    const SkToFCloudScales scales = makeCloudScales(pictures, parameters, largest);
    try {
        if (!m_d->reserve(scales, parameters.layout)) {
            return false;
        }
    } catch (const std::bad_alloc&) {
        return false;
    }
    m_d->build(pictures, scales, parameters);
    return true;
}

void CkToFCloudBuilder::freeOrthoFactorPic() {
    m_d->orthoFactorPic.reset();
}

void CkToFCloudBuilder::setPlainLoop(bool bPlainLoop) {
    m_d->plainLoop = bPlainLoop;
}

const char* CkToFCloudBuilder::lastTargetName() const {
    return m_d->targetName;
}

const QByteArray& CkToFCloudBuilder::vertexBytes() const {
    return m_d->vertices.current();
}

const QByteArray& CkToFCloudBuilder::indexBytes() const {
    return m_d->indices.current();
}

std::span<const SkToFPoint> CkToFCloudBuilder::exportPoints() const {
    return {m_d->exported.get(), size_t(m_d->points)};
}

int CkToFCloudBuilder::pointCount() const {
    return m_d->points;
}

int CkToFCloudBuilder::verticesPerPoint() const {
    return m_d->layout == EkToFVertexLayout::Quads ? 4 : 1;
}

int CkToFCloudBuilder::vertexCount() const {
    return m_d->points * verticesPerPoint();
}

int CkToFCloudBuilder::indexCount() const {
    return int(m_d->indices.current().size() / qsizetype(sizeof(quint32)));
}

int CkToFCloudBuilder::width() const {
    return int(m_d->scales.width);
}

int CkToFCloudBuilder::height() const {
    return int(m_d->scales.height);
}

bool CkToFCloudBuilder::usedLens() const {
    return m_d->scales.useLens;
}

std::optional<SkToFCloudDimensions> CkToFCloudBuilder::dimensions() const {
    return m_d->scales.dimensions;
}

std::array<float, 3> CkToFCloudBuilder::boxHalfExtents() const {
    return {1.0F, m_d->scales.yHalf, m_d->scales.zHalf};
}

float CkToFCloudBuilder::pointSpacing() const {
    return m_d->scales.pointSpacing;
}
