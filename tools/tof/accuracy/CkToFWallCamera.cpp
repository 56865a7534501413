#include "tools/tof/accuracy/CkToFWallCamera.h"

#include "sim/synth/CkSimNoise.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkPicture.h"
#include "zuCore/ToFVocabulary.h"

#include <bit>

namespace {

EkSimCameraKind kindOf(const SkToFAccuracyPoint& point) {
    return point.hybrid ? EkSimCameraKind::Hybrid : EkSimCameraKind::Wave;
}

SkSimSettings settingsOf(const SkToFAccuracyPoint& point, const SkToFAccuracySetup& setup) {
    SkSimSettings settings;
    settings.exposure.timeUs = setup.exposureUs;
    settings.exposure.ambient = point.ambient;
    settings.exposure.noise = setup.noise;
    settings.exposure.seed = setup.seed;
    settings.scene = EkSimScene::Wall;
    settings.wallDistanceM = point.distanceM;
    settings.wallReflectivity = point.reflectivity;
    settings.modulationMHz = point.modulation;
    settings.pulseNs = point.modulation;
    settings.phases = point.phases;
    const bool bytes = point.bits == 8;
    settings.dataFormat = point.hybrid ? (bytes ? ToFDataFormat::kHybrid8 : ToFDataFormat::kHybrid12)
                                       : (bytes ? ToFDataFormat::kAandB8 : ToFDataFormat::kAandB12);
    settings.converterBits = bytes ? settings.converterBits : point.bits;
    return settings;
}

/// First set number of a cell, a hash of its settings: set numbers select the noise.
quint64 firstSet(const SkToFAccuracyPoint& point) {
    quint64 key = point.hybrid ? 1U : 0U;
    for (const double value : {point.modulation, point.distanceM, point.reflectivity, point.ambient,
                               double(point.phases), double(point.bits)}) {
        key = CkSimNoise::bits(key ^ std::bit_cast<quint64>(value), 0);
    }
    return key;
}

/// The image of one set, of the pixels in the middle of the sensor.
SkSimImage imageOf(const SkToFAccuracyPoint& point, const SkToFAccuracySetup& setup,
                   const SkSimSettings& settings) {
    SkSimImage image = makeSimPlan(kindOf(point), settings, {}).front();
    image.info.width = quint32(setup.width);
    image.info.height = quint32(setup.height) * quint32(image.parts.size());
    image.info.lineSize = 0;
    return image;
}

SkSimLens lensOf(const SkToFAccuracyPoint& point, const SkToFAccuracySetup& setup,
                 const SkSimSettings& settings) {
    SkSimLens lens = simLens(kindOf(point), settings);
    lens.width = setup.width;
    lens.height = setup.height;
    return lens;
}

} // namespace

CkToFWallCamera::CkToFWallCamera(const SkToFAccuracyPoint& point, const SkToFAccuracySetup& setup)
    : m_isHybrid(point.hybrid), m_height(quint32(setup.height)), m_firstSet(firstSet(point)),
      m_settings(settingsOf(point, setup)), m_image(imageOf(point, setup, m_settings)),
      m_raster(lensOf(point, setup, m_settings), CkSimScene::wall(point.distanceM, point.reflectivity)) {
    m_wave.setup(m_settings.exposure, m_settings.modulationMHz);
    m_hybrid.setup(m_settings.exposure, m_settings.pulseNs);
}

QString CkToFWallCamera::expose(qint64 iFrame, CkImageData& raw) {
    CkPicture picture;
    if (!picture.allocate(m_image.info)) {
        return QStringLiteral("There is not enough memory.");
    }
    raw.setPicBuf(picture.take());
    raw.setMetadata(m_image.metadata);
    for (quint32 part = 0; part < parts(); ++part) {
        if (!exposePart(part, m_firstSet + quint64(iFrame), raw)) {
            return QStringLiteral("The simulated camera cannot be set up like this.");
        }
    }
    return {};
}

bool CkToFWallCamera::exposePart(quint32 uiPart, quint64 uiSet, CkImageData& raw) {
    const int angleOrSection = m_image.parts[uiPart];
    const quint32 row = uiPart * m_height;
    if (m_isHybrid) {
        const CkSimHybridSynth::SkSection section{.set = uiSet, .index = angleOrSection};
        return m_hybrid.writeSection(m_raster, section, raw.picBuf(), row);
    }
    return m_wave.writePhase(m_raster, uiSet, angleOrSection, raw.picBuf(), row);
}
