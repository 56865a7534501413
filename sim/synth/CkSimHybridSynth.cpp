#include "sim/synth/CkSimHybridSynth.h"

#include "sim/synth/CkSimNoise.h"
#include "sim/synth/SimRow.h"

#include <algorithm>
#include <cmath>

namespace {

template <typename Sample>
void writeWindows(const std::vector<float> (&windows)[3], float gain, int count, Sample* target) {
    const float* const first = windows[0].data();
    const float* const second = windows[1].data();
    const float* const third = windows[2].data();
    for (int column = 0; column < count; ++column) {
        target[3 * column] = Sample(int(first[column] * gain + 0.5F));
        target[3 * column + 1] = Sample(int(second[column] * gain + 0.5F));
        target[3 * column + 2] = Sample(int(third[column] * gain + 0.5F));
    }
}

} // namespace

void CkSimHybridSynth::setup(const SkSimExposure& exposure, double pulseNs) {
    if (exposure == m_exposure && pulseNs == m_pulseNs) {
        return;
    }
    m_exposure = exposure;
    m_pulseNs = pulseNs;
    m_raster = 0;
}

bool CkSimHybridSynth::writeSection(const CkSimRaster& raster, const SkSection& section, SkPicBuf& target,
                                    quint32 firstRow) {
    const int width = raster.lens().width;
    const int height = raster.lens().height;
    const bool bytes = target.dataType == EkImageDataType::UInt8;
    if (target.channels != 3 || (!bytes && target.dataType != EkImageDataType::UInt16) || section.index < 0 ||
        section.index > 15 || !simFits(target, width, height, firstRow)) {
        return false;
    }
    updateMaps(raster);

    const float gain = simGain(target.bitsPerChannel);
    for (int row = 0; row < height; ++row) {
        expose(section, row, width);
        quint8* line = target.row(firstRow + quint32(row));
        if (bytes) {
            writeWindows(m_window, gain, width, line);
        } else {
            writeWindows(m_window, gain, width, reinterpret_cast<quint16*>(line));
        }
    }
    return true;
}

void CkSimHybridSynth::updateMaps(const CkSimRaster& raster) {
    if (m_raster == raster.identity() && m_revision == raster.revision()) {
        return;
    }
    const int width = raster.lens().width;
    SkSimRect area = {0, 0, width, raster.lens().height};
    if (m_raster == raster.identity() && m_revision + 1 == raster.revision()) {
        area = raster.changed();
    } else {
        m_ambient.resize(raster.distance().size());
        for (int window = 0; window < 3; ++window) {
            m_pulse[window].resize(raster.distance().size());
            m_window[window].resize(size_t(width));
            m_gauss[window].resize(size_t(width));
        }
    }
    const double milliseconds = m_exposure.timeUs / 1000.0;
    const double signal = kSignalElectrons * milliseconds;
    const double ambient = kAmbientElectrons * m_exposure.ambient * milliseconds;
    const double rangesPerMetre = 1.0 / range(m_pulseNs);
    for (int row = area.top; row < area.bottom; ++row) {
        size_t index = size_t(row) * size_t(width) + size_t(area.left);
        for (int column = area.left; column < area.right; ++column, ++index) {
            const double delay =
                (double(raster.distance()[index]) + m_exposure.distanceOffsetM) * rangesPerMetre;
            const double returned = signal * double(raster.echo()[index]);
            for (int window = 0; window < 3; ++window) {
                m_pulse[window][index] = float(returned * std::max(0.0, 1.0 - std::abs(delay - window)));
            }
            m_ambient[index] = float(ambient * double(raster.ambient()[index]));
        }
    }
    m_raster = raster.identity();
    m_revision = raster.revision();
}

void CkSimHybridSynth::expose(const SkSection& section, int row, int width) {
    const float sensitivity = float(1U << section.index);
    const float pulseWeight = section.kind == EkSection::Reference ? 0.0F : sensitivity;
    const float ambientWeight =
        section.kind == EkSection::Reference ? sensitivity * kReferenceShare : sensitivity;
    const size_t start = size_t(row) * size_t(width);
    const float* ambient = m_ambient.data() + start;
    for (int window = 0; window < 3; ++window) {
        const float* pulse = m_pulse[window].data() + start;
        float* collected = m_window[window].data();
        for (int column = 0; column < width; ++column) {
            collected[column] = ambient[column] * ambientWeight + pulse[column] * pulseWeight;
        }
    }
    if (m_exposure.noise) {
        constexpr float kReadVariance = float(kReadNoiseElectrons * kReadNoiseElectrons);
        // Reference and measurement of the same section are separate exposures with independent noise.
        const quint32 exposure = quint32(section.index) + (section.kind == EkSection::Reference ? 16U : 0U);
        CkSimNoise::fillRow<3>(CkSimNoise::rowKey(m_exposure.seed, section.set, exposure, quint32(row)),
                               width, {m_gauss[0].data(), m_gauss[1].data(), m_gauss[2].data()});
        for (int window = 0; window < 3; ++window) {
            addSimNoise(m_window[window].data(), m_gauss[window].data(), kReadVariance, width);
        }
    }
    if (section.kind != EkSection::Plain) {
        // The pattern is a property of the sensor: independent of set, section and noise seed.
        const quint64 key = CkSimNoise::rowKey(0, 0, 0xffffU, quint32(row));
        for (int column = 0; column < width; ++column) {
            quint64 pattern = CkSimNoise::bits(key, quint32(column));
            for (std::vector<float>& window : m_window) {
                window[size_t(column)] +=
                    kDarkLevelElectrons + kDarkPatternElectrons * float(pattern & 0xffU) / 255.0F;
                pattern >>= 8;
            }
        }
    }
    for (std::vector<float>& window : m_window) {
        saturateSim(window.data(), width);
    }
}
