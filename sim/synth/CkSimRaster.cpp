#include "sim/synth/CkSimRaster.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>

namespace {

SkSimRect united(const SkSimRect& first, const SkSimRect& second) {
    if (first.isEmpty()) {
        return second;
    }
    if (second.isEmpty()) {
        return first;
    }
    return {std::min(first.left, second.left), std::min(first.top, second.top),
            std::max(first.right, second.right), std::max(first.bottom, second.bottom)};
}

quint64 nextIdentity() {
    static std::atomic<quint64> last{0};
    return ++last;
}

} // namespace

CkSimRaster::CkSimRaster(const SkSimLens& lens, const CkSimScene& scene)
    : m_identity(nextIdentity()), m_lens(lens), m_scene(scene) {
    const size_t count = size_t(lens.width) * size_t(lens.height);
    m_static.distance.resize(count);
    m_static.echo.resize(count);
    m_static.ambient.resize(count);
    size_t index = 0;
    for (int row = 0; row < lens.height; ++row) {
        for (int column = 0; column < lens.width; ++column, ++index) {
            const SkSimHit hit = m_scene.hitStatic(rayOf(column, row));
            m_static.distance[index] = float(hit.distance);
            m_static.echo[index] = float(hit.reflectivity * hit.cosine / (hit.distance * hit.distance));
            m_static.ambient[index] = float(hit.reflectivity * hit.daylight);
        }
    }
    m_current = m_static;
    if (m_scene.hasSphere()) {
        const SkSimVector center = m_scene.sphereCenter(0.0);
        m_sphereArea = sphereArea(center);
        drawSphere(center, m_sphereArea);
    }
    m_changed = {0, 0, lens.width, lens.height};
    m_revision = 1;
}

void CkSimRaster::moveTo(double seconds) {
    if (!m_scene.hasSphere() || seconds == m_seconds) {
        return;
    }
    const SkSimRect before = m_sphereArea;
    restore(before);
    const SkSimVector center = m_scene.sphereCenter(seconds);
    m_sphereArea = sphereArea(center);
    drawSphere(center, m_sphereArea);
    m_changed = united(before, m_sphereArea);
    m_seconds = seconds;
    ++m_revision;
}

bool CkSimRaster::writeDistance(SkPicBuf& target) const {
    const size_t rowBytes = size_t(m_lens.width) * sizeof(float);
    if (!target.data || target.dataType != EkImageDataType::Float32 || target.channels != 1 ||
        target.width != quint32(m_lens.width) || target.height != quint32(m_lens.height) ||
        target.lineSize < rowBytes) {
        return false;
    }
    for (quint32 row = 0; row < target.height; ++row) {
        std::memcpy(target.row(row), m_current.distance.data() + size_t(row) * target.width, rowBytes);
    }
    const auto [low, high] = std::minmax_element(m_current.distance.begin(), m_current.distance.end());
    target.minValue = *low;
    target.maxValue = *high;
    return true;
}

SkSimVector CkSimRaster::rayOf(int column, int row) const {
    const double x = (column - m_lens.width * 0.5) * m_lens.cellSizeMm;
    const double y = (m_lens.height * 0.5 - row) * m_lens.cellSizeMm;
    const double length = std::sqrt(x * x + y * y + m_lens.focalLengthMm * m_lens.focalLengthMm);
    return {x / length, y / length, m_lens.focalLengthMm / length};
}

SkSimRect CkSimRaster::sphereArea(const SkSimVector& center) const {
    // The projection of the cube around the sphere contains that of the sphere.
    const double radius = m_scene.sphereRadius();
    const double pixels = m_lens.focalLengthMm / m_lens.cellSizeMm;
    const double nearZ = center.z - radius;
    const double farZ = center.z + radius;
    const auto lowest = [&](double edge) { return pixels * std::min(edge / nearZ, edge / farZ); };
    const auto highest = [&](double edge) { return pixels * std::max(edge / nearZ, edge / farZ); };
    const double middleX = m_lens.width * 0.5;
    const double middleY = m_lens.height * 0.5;
    SkSimRect area;
    area.left = std::clamp(int(std::floor(middleX + lowest(center.x - radius))), 0, m_lens.width);
    area.right = std::clamp(int(std::ceil(middleX + highest(center.x + radius))) + 1, 0, m_lens.width);
    area.top = std::clamp(int(std::floor(middleY - highest(center.y + radius))), 0, m_lens.height);
    area.bottom = std::clamp(int(std::ceil(middleY - lowest(center.y - radius))) + 1, 0, m_lens.height);
    return area;
}

void CkSimRaster::restore(const SkSimRect& area) {
    if (area.isEmpty()) {
        return;
    }
    const auto copy = [&](const std::vector<float>& source, std::vector<float>& target) {
        for (int row = area.top; row < area.bottom; ++row) {
            const size_t start = size_t(row) * size_t(m_lens.width) + size_t(area.left);
            std::memcpy(&target[start], &source[start], size_t(area.right - area.left) * sizeof(float));
        }
    };
    copy(m_static.distance, m_current.distance);
    copy(m_static.echo, m_current.echo);
    copy(m_static.ambient, m_current.ambient);
}

void CkSimRaster::drawSphere(const SkSimVector& center, const SkSimRect& area) {
    SkSimHit hit;
    for (int row = area.top; row < area.bottom; ++row) {
        for (int column = area.left; column < area.right; ++column) {
            if (!m_scene.hitSphere(rayOf(column, row), center, hit)) {
                continue;
            }
            const size_t index = size_t(row) * size_t(m_lens.width) + size_t(column);
            if (float(hit.distance) >= m_static.distance[index]) {
                continue;
            }
            m_current.distance[index] = float(hit.distance);
            m_current.echo[index] = float(hit.reflectivity * hit.cosine / (hit.distance * hit.distance));
            m_current.ambient[index] = float(hit.reflectivity * hit.daylight);
        }
    }
}
