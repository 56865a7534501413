#include "sim/camera/CkSimPainter.h"

#include "zuCore/ToFVocabulary.h"

#include <new>

bool CkSimPainter::moveTo(const SkSimSettings& settings, double seconds) {
    SkView view{simLens(m_kind, settings), settings.scene, 0.0, 0.0};
    if (settings.scene == EkSimScene::Wall) {
        view.wallDistanceM = settings.wallDistanceM;
        view.wallReflectivity = settings.wallReflectivity;
    }
    try {
        if (!m_raster || view != m_view) {
            const bool wall = settings.scene == EkSimScene::Wall;
            m_raster = std::make_unique<CkSimRaster>(
                view.lens,
                wall ? CkSimScene::wall(view.wallDistanceM, view.wallReflectivity) : CkSimScene::room());
            m_view = view;
        }
    } catch (const std::bad_alloc&) {
        m_raster.reset();
        return false;
    }
    m_raster->moveTo(seconds);
    return true;
}

bool CkSimPainter::paint(const SkSimSettings& settings, const SkSimImage& image, quint64 set,
                         SkPicBuf& picture) {
    if (!m_raster) {
        return false;
    }
    try {
        if (image.content == EkSimContent::Grey) {
            m_grey.setup(settings.exposure);
            return m_grey.writePicture(*m_raster, set, picture);
        }
        quint32 row = 0;
        for (const int part : image.parts) {
            bool painted = false;
            if (image.content == EkSimContent::Phases) {
                m_wave.setup(settings.exposure, settings.modulationMHz);
                painted = m_wave.writePhase(*m_raster, set, part, picture, row);
            } else {
                auto kind = CkSimHybridSynth::EkSection::Plain;
                if (image.content == EkSimContent::Reference) {
                    kind = CkSimHybridSynth::EkSection::Reference;
                } else if (image.metadata.sectionMode == ToFSectionMode::kReferenceFirst) {
                    kind = CkSimHybridSynth::EkSection::Measured;
                }
                m_hybrid.setup(settings.exposure, settings.pulseNs);
                painted = m_hybrid.writeSection(*m_raster, {set, part, kind}, picture, row);
            }
            if (!painted) {
                return false;
            }
            row += quint32(m_raster->lens().height);
        }
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}
