#include "plugins/zplToF/view3d/CkToFRenderCapture.h"

#include <Qt3DRender/QRenderCapture>
#include <Qt3DRender/QSubtreeEnabler>

CkToFRenderCapture::CkToFRenderCapture(Qt3DRender::QFrameGraphNode* pBranch, QObject* pParent)
    : QObject(pParent), m_enabler(new Qt3DRender::QSubtreeEnabler(pBranch)),
      m_capture(new Qt3DRender::QRenderCapture(m_enabler)) {
    m_enabler->setEnabled(false);
}

Qt3DRender::QRenderCapture* CkToFRenderCapture::capture() const {
    return m_capture;
}

Qt3DRender::QRenderCaptureReply* CkToFRenderCapture::request() {
    if (!m_capture || !m_enabler) {
        return nullptr;
    }
    Qt3DRender::QRenderCaptureReply* reply = m_capture->requestCapture();
    if (reply == nullptr) {
        return nullptr;
    }
    m_pending.append(reply);
    connect(reply, &Qt3DRender::QRenderCaptureReply::completed, this, &CkToFRenderCapture::disableWhenIdle);
    connect(reply, &QObject::destroyed, this, &CkToFRenderCapture::disableWhenIdle);
    m_enabler->setEnabled(true);
    return reply;
}

void CkToFRenderCapture::disableWhenIdle() {
    m_pending.removeIf([](const auto& reply) { return !reply || reply->isComplete(); });
    if (m_pending.isEmpty() && m_enabler) {
        m_enabler->setEnabled(false);
    }
}
