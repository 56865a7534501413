#include "plugins/zplToF/view3d/CkToFViewLut.h"

#include "plugins/zplToF/view3d/ToFHostSettings.h"
#include "zuCore/CkLut.h"
#include "zuCoreGui/CkMdiView.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QSettings>

CkToFViewLut::CkToFViewLut() = default;

CkToFViewLut::~CkToFViewLut() = default;

CkLut* CkToFViewLut::read(bool* pbFlag1, bool* pbFlag2, unsigned int* puiBits) const {
    if (pbFlag1 != nullptr) {
        *pbFlag1 = m_flags.bFlag1;
    }
    if (pbFlag2 != nullptr) {
        *pbFlag2 = m_flags.bFlag2;
    }
    if (puiBits != nullptr) {
        *puiBits = 32;
    }
    return m_lut.get();
}

bool CkToFViewLut::fits(const SkPicBuf& picture) const {
    return m_lut && m_lut->bitsPerChannel() == picture.bitsPerChannel;
}

CkLut* CkToFViewLut::makeFor(const SkPicBuf& picture, const QList<void*>& cameraHandles) {
    IkAppDelegate* host = IkAppDelegate::instance();
    CkLut* lut = nullptr;
    if (host != nullptr && (!m_lut || m_isDefault)) {
        lut = host->createLut(picture, cameraHandles);
    }
    if (lut == nullptr && m_lut) {
        lut = m_lut->transformToFormat(picture.bitsPerChannel, picture.channels, picture.layoutFlag,
                                       picture.dataType);
    }
    return lut != m_lut.get() ? lut : nullptr;
}

bool CkToFViewLut::set(CkLut* pLut, const SkFlags& flags) {
    m_flags = flags;
    if (pLut == nullptr) {
        return false;
    }
    m_isDefault = false;
    if (pLut != m_lut.get()) {
        m_lut.reset(pLut);
    }
    m_colorTable.update(m_lut->pseudoColorIndex());
    ToFHostSettings::write(ToFSettingsKey::kLutPseudoColor, m_lut->pseudoColorIndex());
    return true;
}

void CkToFViewLut::announceChange(CkMdiView& view) {
    IkAppDelegate* host = IkAppDelegate::instance();
    if (host == nullptr) {
        return;
    }
    if (host->activeViewId() == view.viewId()) {
        host->refreshLutControls();
    }
    host->viewLutChanged(&view);
}

void CkToFViewLut::makeDefault(const SkPicBuf& picture) {
    if (m_lut) {
        return;
    }
    m_lut = std::make_unique<CkLut>(picture.bitsPerChannel, picture.channels, picture.layoutFlag,
                                    picture.dataType);
    if (const auto settings = ToFHostSettings::open()) {
        m_lut->setPseudoColorIndex(SkToFViewSettings::readPseudoColor(*settings));
        m_isDefault = !settings->contains(QLatin1String(ToFSettingsKey::kLutPseudoColor));
    }
    m_lut->allocRgbTable(sampleBytes(picture.dataType));
    m_colorTable.update(m_lut->pseudoColorIndex());
}
