#include "host/viewer/area/CkViewNoticeController.h"

#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/picture/CkImageView.h"
#include "zuCore/CkCameraManager.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainable.h"

#include <QBoxLayout>
#include <QLabel>

namespace {

constexpr int kCheckMs = 250;
constexpr int kIdleChecks = 4;

/// The block itself and everything upstream of it, the nearest first.
QList<const CkChainable*> upstreamOf(const CkChainable* pBlock) {
    QList<const CkChainable*> blocks;
    if (pBlock != nullptr) {
        blocks.append(pBlock);
    }
    for (qsizetype i = 0; i < blocks.size(); ++i) {
        for (const CkChainable* feeder : blocks[i]->precedessors()) {
            if (!blocks.contains(feeder)) {
                blocks.append(feeder);
            }
        }
    }
    return blocks;
}

QString unpluggedCamera(const QList<void*>& handles) {
    const CkCameraManager* manager = CkCameraManager::instance();
    for (void* handle : handles) {
        SkCameraInfo info;
        if (manager->isUnplugged(handle) && manager->cameraInfo(handle, info)) {
            return info.name;
        }
    }
    return {};
}

} // namespace

CkViewNoticeController::CkViewNoticeController(CkViewArea* pArea) : QObject(pArea), m_area(pArea) {
    connect(pArea, &CkViewArea::viewAdded, this, &CkViewNoticeController::watch);
    connect(pArea, &CkViewArea::viewAboutToClose, this, [this](int iViewId) { m_entries.remove(iViewId); });
    // Blocks report errors on other threads, often many at once; hence polling.
    const CkCameraManager* manager = CkCameraManager::instance();
    connect(manager, &CkCameraManager::cameraUnplugged, this, &CkViewNoticeController::refresh);
    connect(manager, &CkCameraManager::cameraPluggedIn, this, &CkViewNoticeController::refresh);
    m_timer.setInterval(kCheckMs);
    connect(&m_timer, &QTimer::timeout, this, &CkViewNoticeController::refresh);
    m_timer.start();
}

QString CkViewNoticeController::notice(int iViewId) const {
    return m_entries.value(iViewId).text;
}

void CkViewNoticeController::watch(int iViewId) {
    m_entries[iViewId].view = m_area->view(iViewId);
}

void CkViewNoticeController::refresh() {
    for (SkEntry& entry : m_entries) {
        if (entry.view) {
            refreshView(entry);
        }
    }
}

CkChainable* CkViewNoticeController::providerOf(const CkMdiView* pView) const {
    if (CkChainable* own = pView->dataProvider()) {
        return own;
    }
    const CkMdiView* followed = m_area->view(pView->connectedViewId());
    return followed != nullptr ? followed->dataProvider() : nullptr;
}

CkViewNoticeController::SkNotice CkViewNoticeController::noticeFor(CkMdiView* pView,
                                                                   const CkChainable* pProvider) {
    const QString camera = unpluggedCamera(pView->cameraHandles());
    if (!camera.isEmpty()) {
        return {tr("\"%1\" is unplugged. The view goes on when it is plugged in again.").arg(camera), true};
    }
    for (const CkChainable* block : upstreamOf(pProvider)) {
        if (block->state() == CkChainable::Blocked) {
            return {tr("\"%1\" is switched off.").arg(block->title()), true};
        }
        const QString error = block->errorMessage();
        if (!error.isEmpty()) {
            return {QStringLiteral("%1: %2").arg(block->title(), error), false};
        }
    }
    return {};
}

QString CkViewNoticeController::emptyText(const CkMdiView* pView, const CkChainable* pProvider) {
    const CkCameraManager* manager = CkCameraManager::instance();
    const QList<void*> cameras = pView->cameraHandles();
    bool running = false;
    for (void* handle : cameras) {
        running = running || manager->isAcquiring(handle);
    }
    const bool chainRuns =
        pProvider != nullptr && pProvider->chain() != nullptr && pProvider->chain()->started();
    return !running && (!cameras.isEmpty() || pProvider == nullptr)
               ? tr("No picture yet. Start the camera to see one.")
           : !chainRuns        ? tr("No picture yet. The processing chain is stopped.")
           : cameras.isEmpty() ? tr("No picture yet. Play the recording to see one.")
                               : tr("No picture yet. The camera runs; the first picture is on its way.");
}

CkViewNoticeController::SkFlow CkViewNoticeController::flowTo(const CkChainable* pProvider) {
    SkFlow flow;
    for (const CkChainable* block : upstreamOf(pProvider)) {
        if (const CkChain* chain = block->chain()) {
            const SkBlockStatistics statistics = chain->blockStatistics(block);
            flow.in += statistics.framesIn;
            flow.out = block == pProvider ? statistics.framesOut : flow.out;
        }
    }
    return flow;
}

void CkViewNoticeController::refreshView(SkEntry& entry) {
    const CkChainable* provider = providerOf(entry.view);
    const SkNotice notice = noticeFor(entry.view, provider);
    const SkFlow flow = flowTo(provider);
    if (notice.text.isEmpty() || flow.out != entry.flow.out) {
        entry.idleChecks = 0;
    } else if (flow.in != entry.flow.in) {
        ++entry.idleChecks;
    }
    entry.flow = flow;
    if (auto* image = qobject_cast<CkImageView*>(entry.view)) {
        // An error message alone does not mean that no frames arrive: some blocks warn and keep delivering.
        image->setStale(notice.isHalted || entry.idleChecks >= kIdleChecks);
        image->setEmptyText(emptyText(image, provider));
    }
    if (notice.text != entry.text) {
        show(entry, notice.text);
    }
}

void CkViewNoticeController::show(SkEntry& entry, const QString& sText) {
    entry.text = sText;
    auto* const layout = qobject_cast<QBoxLayout*>(entry.view->layout());
    if (!entry.banner && layout != nullptr) {
        entry.banner = new QLabel(entry.view);
        entry.banner->setObjectName(QStringLiteral("viewNotice"));
        entry.banner->setWordWrap(true);
        entry.banner->setTextFormat(Qt::PlainText);
        // A long text must not widen the view.
        entry.banner->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Minimum);
        entry.banner->setStyleSheet(
            QStringLiteral("background: #ffe9b0; color: #5a3a00; padding: 4px 8px; font-weight: bold"));
        layout->insertWidget(0, entry.banner);
    }
    if (entry.banner) {
        entry.banner->setText(sText);
        entry.banner->setToolTip(sText);
        entry.banner->setVisible(!sText.isEmpty());
    }
}
