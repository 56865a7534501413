#include "host/viewer/playback/CkPlayback.h"

#include "host/recording/CkVideoSource.h"
#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/playback/CkFrameThrottle.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"
#include "zuCoreGui/CkMdiView.h"

#include <algorithm>

namespace {

/// None for a chain that has been closed in the meantime.
QList<CkVideoSource*> playersOf(CkChain* chain) {
    QList<CkVideoSource*> players;
    if (CkChainManager::instance()->chains().contains(chain)) {
        for (CkChainable* block : chain->imageSources()) {
            if (auto* source = qobject_cast<CkVideoSource*>(block)) {
                players.append(source);
            }
        }
    }
    return players;
}

} // namespace

CkPlayback::CkPlayback(CkViewArea* pArea, QObject* pParent)
    : QObject(pParent), m_area(pArea), m_throttle(new CkFrameThrottle(this)) {
    connect(pArea, &CkViewArea::activeViewChanged, this, &CkPlayback::follow);
    connect(CkChainManager::instance(), &CkChainManager::chainCreated, this, &CkPlayback::watch);
}

CkVideoSource* CkPlayback::sourceOf(const CkViewArea& area, const CkMdiView* pView) {
    if (pView != nullptr && pView->dataProvider() == nullptr && pView->connectedViewId() >= 0) {
        pView = area.view(pView->connectedViewId());
    }
    CkChainable* block = pView != nullptr ? pView->dataProvider() : nullptr;
    while (block != nullptr) {
        if (auto* source = qobject_cast<CkVideoSource*>(block)) {
            return source;
        }
        const QList<CkChainable*> before = block->precedessors();
        block = before.isEmpty() ? nullptr : before.first();
    }
    return nullptr;
}

CkVideoSource* CkPlayback::source() const {
    return m_source;
}

void CkPlayback::watch(CkChain* pChain) {
    // Not queued: the first frame may arrive at any time.
    connect(pChain, &CkChain::structureChanged, this, [this, pChain] {
        for (CkVideoSource* source : playersOf(pChain)) {
            source->setAfterFrame(m_throttle->function());
        }
    });
    // Queued, to run when the start is complete; there may be several starts in a row.
    connect(
        pChain, &CkChain::runningChanged, this,
        [this, pChain](bool bRunning) {
            for (CkVideoSource* source : bRunning ? playersOf(pChain) : QList<CkVideoSource*>()) {
                if (!source->isPlaying()) {
                    source->seek(std::max<qint64>(source->position(), 0));
                }
            }
            follow();
        },
        Qt::QueuedConnection);
}

void CkPlayback::follow() {
    CkVideoSource* source = sourceOf(*m_area, m_area->activeView());
    if (source == m_source) {
        return;
    }
    m_source = source;
    emit sourceChanged();
}

std::optional<qint64> CkPlayback::timeOf(qint64 iFrame) const {
    const std::shared_ptr<const IkFrameFile> file = m_source ? m_source->recording() : nullptr;
    SkFrameDescription first;
    SkFrameDescription there;
    SkFrameDescription last;
    if (file == nullptr || !file->describe(0, first, nullptr) || !file->describe(iFrame, there, nullptr) ||
        !file->describe(file->frameCount() - 1, last, nullptr) ||
        last.additionalData.timestampNs <= first.additionalData.timestampNs) {
        return std::nullopt;
    }
    return there.additionalData.timestampNs - first.additionalData.timestampNs;
}

void CkPlayback::togglePlaying() {
    if (!m_source) {
        return;
    }
    if (m_source->isPlaying()) {
        m_source->pause();
        return;
    }
    // Playing implies that the chain runs.
    if (CkChain* chain = m_source->chain(); chain != nullptr && chain->stopped()) {
        chain->start();
    }
    m_source->play();
}

void CkPlayback::stepForward() {
    if (m_source) {
        m_source->step();
    }
}

void CkPlayback::stepBack() {
    if (!m_source) {
        return;
    }
    m_source->pause();
    const qint64 before = m_source->position() - 1;
    if (before >= 0) {
        m_source->seek(before);
    } else if (m_source->isLoop()) {
        m_source->seek(m_source->frameCount() - 1);
    }
}

void CkPlayback::goToFirst() {
    goTo(0);
}

void CkPlayback::goToLast() {
    if (m_source) {
        goTo(m_source->frameCount() - 1);
    }
}

void CkPlayback::goTo(qint64 iFrame) {
    if (m_source) {
        m_source->seek(iFrame);
    }
}

void CkPlayback::setLoop(bool bLoop) {
    if (m_source && m_source->isLoop() != bLoop) {
        m_source->setLoop(bLoop);
        emit settingsChanged();
    }
}

void CkPlayback::setPace(int iPace) {
    if (m_source && m_source->pace() != iPace) {
        m_source->setPace(iPace);
        emit settingsChanged();
    }
}

void CkPlayback::setSpeed(double fSpeed) {
    if (m_source && m_source->speed() != fSpeed) {
        m_source->setSpeed(fSpeed);
        emit settingsChanged();
    }
}
