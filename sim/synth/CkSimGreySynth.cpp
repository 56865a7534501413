#include "sim/synth/CkSimGreySynth.h"

#include "sim/synth/CkSimNoise.h"
#include "sim/synth/SimRow.h"

bool CkSimGreySynth::writePicture(const CkSimRaster& raster, quint64 set, SkPicBuf& target) {
    const int width = raster.lens().width;
    const int height = raster.lens().height;
    const bool bytes = target.dataType == EkImageDataType::UInt8;
    if (target.channels != 1 || (!bytes && target.dataType != EkImageDataType::UInt16) ||
        target.height != quint32(height) || !simFits(target, width, height, 0)) {
        return false;
    }

    m_row.resize(size_t(width));
    m_gauss.resize(size_t(width));
    const float gain = simGain(target.bitsPerChannel);
    const float light = float(kAmbientElectrons * m_exposure.ambient * m_exposure.timeUs / 1000.0);
    constexpr float kReadVariance = float(kReadNoiseElectrons * kReadNoiseElectrons);
    // Selects a noise stream that no exposure of the ToF sensors uses.
    constexpr quint32 kGreyExposure = 0x10000U;
    for (int row = 0; row < height; ++row) {
        const float* ambient = raster.ambient().data() + size_t(row) * size_t(width);
        for (int column = 0; column < width; ++column) {
            m_row[size_t(column)] = ambient[column] * light;
        }
        if (m_exposure.noise) {
            CkSimNoise::fillRow<1>(CkSimNoise::rowKey(m_exposure.seed, set, kGreyExposure, quint32(row)),
                                   width, {m_gauss.data()});
            addSimNoise(m_row.data(), m_gauss.data(), kReadVariance, width);
        }
        saturateSim(m_row.data(), width);
        quint8* line = target.row(quint32(row));
        if (bytes) {
            for (int column = 0; column < width; ++column) {
                line[column] = quint8(int(m_row[size_t(column)] * gain + 0.5F));
            }
        } else {
            auto* samples = reinterpret_cast<quint16*>(line);
            for (int column = 0; column < width; ++column) {
                samples[column] = quint16(int(m_row[size_t(column)] * gain + 0.5F));
            }
        }
    }
    return true;
}
