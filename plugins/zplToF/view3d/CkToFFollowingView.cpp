#include "plugins/zplToF/view3d/CkToFFollowingView.h"

#include "zuCore/CkChain.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkImageProvider.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QPointer>
#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int kCloneWidth = 496;

} // namespace

CkToFFollowingView::CkToFFollowingView(int iConnectedViewId, int iSecondViewId, CkChainable* pProvider,
                                       CkChainable* pSecond)
    : CkMdiView(pProvider, pSecond), m_connectedViewId(iConnectedViewId), m_secondViewId(iSecondViewId) {}

void CkToFFollowingView::followTitle(const QString& sSuffix) {
    m_titleSuffix = sSuffix;
    refreshTitle();
    connect(this, &CkMdiView::viewTitleChanged, this, &CkToFFollowingView::refreshTitle);
    if (const CkMdiView* connected = connectedView()) {
        connect(connected, &CkMdiView::viewTitleChanged, this, &CkToFFollowingView::refreshTitle);
    }
}

void CkToFFollowingView::refreshTitle() {
    const CkChainable* provider = dataProvider();
    if (const CkChain* chain = provider != nullptr ? provider->chain() : nullptr) {
        setWindowTitle(chain->chainTitle(provider) + m_titleSuffix);
    }
}

CkMdiView* CkToFFollowingView::connectedView() const {
    IkAppDelegate* host = IkAppDelegate::instance();
    return host != nullptr ? host->mdiView(m_connectedViewId) : nullptr;
}

QSize CkToFFollowingView::cloneSize(CkChainable* pProvider) {
    auto* images = qobject_cast<CkImageProvider*>(pProvider);
    SkPicBufInfo info;
    if (images == nullptr || !images->outputImageInfo(info, nullptr) || info.width == 0 || info.height == 0) {
        return {};
    }
    const double shape = double(info.width) / double(info.height);
    return {kCloneWidth, int(std::min(std::ceil(kCloneWidth / shape), double(QWIDGETSIZE_MAX)))};
}

QString CkToFFollowingView::viewTitle() const {
    return windowTitle();
}

CkChainable* CkToFFollowingView::dataProvider() const {
    const CkMdiView* connected = connectedView();
    return connected != nullptr ? connected->dataProvider() : CkMdiView::dataProvider();
}

QList<void*> CkToFFollowingView::cameraHandles() const {
    const CkMdiView* connected = connectedView();
    return connected != nullptr ? connected->cameraHandles() : CkMdiView::cameraHandles();
}

const CkImageData* CkToFFollowingView::imageData(qint32 iFrameId) {
    if (m_reported != nullptr && m_reported->frameId() == iFrameId) {
        return m_reported;
    }
    if (const CkImageData* own = CkMdiView::imageData(iFrameId)) {
        return own;
    }
    const CkImageData* current = currentImage();
    return current != nullptr && current->frameId() == iFrameId ? current : nullptr;
}

void CkToFFollowingView::updateWithConnectedImageData(const CkImageData* pData, bool bForce) {
    if (pData != nullptr) {
        // Listeners may close the view.
        const QPointer<CkToFFollowingView> self(this);
        const CkImageData* outer = std::exchange(m_reported, pData);
        emit receivedFrame(pData->frameId());
        if (!self) {
            return;
        }
        m_reported = outer;
    }
    showImageData(pData, bForce);
}

void CkToFFollowingView::showFrame(std::unique_ptr<CkImageData> frame) {
    if (frame) {
        showImageData(frame.get(), false);
    }
    CkMdiView::showFrame(std::move(frame));
}
