#include "sim/synth/CkSimWaveSynth.h"

#include "sim/synth/CkSimNoise.h"
#include "sim/synth/SimRow.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

template <typename Sample>
void writeTaps(const float* tapA, const float* tapB, float gain, int count, Sample* target) {
    for (int column = 0; column < count; ++column) {
        target[2 * column] = Sample(int(tapA[column] * gain + 0.5F));
        target[2 * column + 1] = Sample(int(tapB[column] * gain + 0.5F));
    }
}

template <typename Sample>
void writeDifference(const float* tapA, const float* tapB, float gain, int count, Sample* target) {
    for (int column = 0; column < count; ++column) {
        const float difference = (tapA[column] - tapB[column]) * gain;
        target[column] = Sample(int(difference + (difference < 0.0F ? -0.5F : 0.5F)));
    }
}

} // namespace

void CkSimWaveSynth::setup(const SkSimExposure& exposure, double modulationMHz) {
    if (exposure == m_exposure && modulationMHz == m_modulationMHz) {
        return;
    }
    m_exposure = exposure;
    m_modulationMHz = modulationMHz;
    m_raster = 0;
}

bool CkSimWaveSynth::writePhase(const CkSimRaster& raster, quint64 set, int angleDegrees, SkPicBuf& target,
                                quint32 firstRow) {
    const int width = raster.lens().width;
    const int height = raster.lens().height;
    const bool taps = target.channels == 2 && (target.dataType == EkImageDataType::UInt8 ||
                                               target.dataType == EkImageDataType::UInt16);
    const bool difference = target.channels == 1 && (target.dataType == EkImageDataType::Int8 ||
                                                     target.dataType == EkImageDataType::Int16);
    if ((!taps && !difference) || !simFits(target, width, height, firstRow)) {
        return false;
    }
    updateMaps(raster);

    const bool bytes = sampleBytes(target.dataType) == 1;
    const bool noRoomForSign = difference && target.bitsPerChannel == 8 * sampleBytes(target.dataType);
    const float gain = simGain(noRoomForSign ? target.bitsPerChannel - 1 : target.bitsPerChannel);
    for (int row = 0; row < height; ++row) {
        expose(angleDegrees, set, row, width);
        quint8* line = target.row(firstRow + quint32(row));
        if (taps && bytes) {
            writeTaps(m_tapA.data(), m_tapB.data(), gain, width, line);
        } else if (taps) {
            writeTaps(m_tapA.data(), m_tapB.data(), gain, width, reinterpret_cast<quint16*>(line));
        } else if (bytes) {
            writeDifference(m_tapA.data(), m_tapB.data(), gain, width, reinterpret_cast<qint8*>(line));
        } else {
            writeDifference(m_tapA.data(), m_tapB.data(), gain, width, reinterpret_cast<qint16*>(line));
        }
    }
    return true;
}

void CkSimWaveSynth::updateMaps(const CkSimRaster& raster) {
    if (m_raster == raster.identity() && m_revision == raster.revision()) {
        return;
    }
    const int width = raster.lens().width;
    const size_t count = raster.distance().size();
    SkSimRect area = {0, 0, width, raster.lens().height};
    if (m_raster == raster.identity() && m_revision + 1 == raster.revision()) {
        area = raster.changed();
    } else {
        m_mean.resize(count);
        m_cosine.resize(count);
        m_sine.resize(count);
        for (std::vector<float>* row : {&m_tapA, &m_tapB, &m_gaussA, &m_gaussB}) {
            row->resize(size_t(width));
        }
    }
    const double milliseconds = m_exposure.timeUs / 1000.0;
    const double signal = kSignalElectrons * milliseconds;
    const double ambient = kAmbientElectrons * m_exposure.ambient * milliseconds;
    const double radiansPerMetre = 2.0 * std::numbers::pi / unambiguousRange(m_modulationMHz);
    for (int row = area.top; row < area.bottom; ++row) {
        size_t index = size_t(row) * size_t(width) + size_t(area.left);
        for (int column = area.left; column < area.right; ++column, ++index) {
            const double half = 0.5 * signal * double(raster.echo()[index]);
            const double phase =
                radiansPerMetre * (double(raster.distance()[index]) + m_exposure.distanceOffsetM);
            m_mean[index] = float(half + 0.5 * ambient * double(raster.ambient()[index]));
            m_cosine[index] = float(half * kContrast * std::cos(phase));
            m_sine[index] = float(half * kContrast * std::sin(phase));
        }
    }
    m_raster = raster.identity();
    m_revision = raster.revision();
}

void CkSimWaveSynth::expose(int angleDegrees, quint64 set, int row, int width) {
    const double angle = angleDegrees * std::numbers::pi / 180.0;
    const float cosineWeight = float(std::cos(angle));
    const float sineWeight = float(std::sin(angle));
    const size_t start = size_t(row) * size_t(width);
    const float* mean = m_mean.data() + start;
    const float* cosine = m_cosine.data() + start;
    const float* sine = m_sine.data() + start;
    float* tapA = m_tapA.data();
    float* tapB = m_tapB.data();
    for (int column = 0; column < width; ++column) {
        const float swing = cosine[column] * cosineWeight + sine[column] * sineWeight;
        tapA[column] = mean[column] + swing;
        tapB[column] = mean[column] - swing;
    }
    if (m_exposure.noise) {
        constexpr float kReadVariance = float(kReadNoiseElectrons * kReadNoiseElectrons);
        CkSimNoise::fillRow<2>(CkSimNoise::rowKey(m_exposure.seed, set, quint32(angleDegrees), quint32(row)),
                               width, {m_gaussA.data(), m_gaussB.data()});
        addSimNoise(tapA, m_gaussA.data(), kReadVariance, width);
        addSimNoise(tapB, m_gaussB.data(), kReadVariance, width);
    }
    saturateSim(tapA, width);
    saturateSim(tapB, width);
}
