#include "host/viewer/session/CkSessionSaver.h"

#include "host/viewer/area/CkViewArea.h"
#include "zuCore/CkCameraManager.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"

#include <QApplication>
#include <QDockWidget>
#include <QEvent>
#include <QMainWindow>
#include <QMdiSubWindow>

namespace {

constexpr int kDelayMs = 3000;
// Continuous changes postpone saving by at most this many delays.
constexpr int kMaximumDelays = 5;

} // namespace

CkSessionSaver::CkSessionSaver(const QMainWindow* pWindow, const CkViewArea* pArea, EkSessionScope scope,
                               bool bAtOnce)
    : m_window(pWindow), m_area(pArea), m_scope(scope), m_last(SkWindowLayout::of(*pWindow, *pArea, scope)),
      m_isOn(bAtOnce) {
    m_timer.setSingleShot(true);
    m_timer.setInterval(kDelayMs);
    connect(&m_timer, &QTimer::timeout, this, &CkSessionSaver::save);
    connect(pArea, &CkViewArea::viewAdded, this, &CkSessionSaver::scheduleSave);
    connect(pArea, &CkViewArea::viewClosed, this, &CkSessionSaver::scheduleSave);
    connect(pArea, &CkViewArea::activeViewChanged, this, &CkSessionSaver::scheduleSave);
    const CkCameraManager* const cameras = CkCameraManager::instance();
    connect(cameras, &CkCameraManager::newCameraConnected, this, &CkSessionSaver::scheduleSave);
    connect(cameras, &CkCameraManager::cameraClosed, this, &CkSessionSaver::scheduleSave);
    connect(cameras, &CkCameraManager::acquisitionChanged, this, &CkSessionSaver::scheduleSave);
    const auto watch = [this](CkChain* pChain) {
        connect(pChain, &CkChain::structureChanged, this, &CkSessionSaver::scheduleSave);
    };
    connect(CkChainManager::instance(), &CkChainManager::chainCreated, this, watch);
    for (CkChain* chain : CkChainManager::instance()->chains()) {
        watch(chain);
    }
    // Settings of blocks, colours and the like have no signal, but change on keys and mouse events only.
    QCoreApplication::instance()->installEventFilter(this);
}

CkSessionSaver::~CkSessionSaver() = default;

void CkSessionSaver::end() {
    m_timer.stop();
    disconnect(m_area, nullptr, this, nullptr);
    disconnect(CkCameraManager::instance(), nullptr, this, nullptr);
    disconnect(CkChainManager::instance(), nullptr, this, nullptr);
    for (CkChain* chain : CkChainManager::instance()->chains()) {
        disconnect(chain, nullptr, this, nullptr);
    }
    QCoreApplication::instance()->removeEventFilter(this);
}

bool CkSessionSaver::eventFilter(QObject* pWatched, QEvent* pEvent) {
    switch (pEvent->type()) {
    case QEvent::MouseButtonRelease:
    case QEvent::KeyRelease:
    case QEvent::Wheel:
    case QEvent::Drop:
        m_isOn = true;
        scheduleSave();
        break;
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::WindowStateChange:
        if (pWatched == m_window || qobject_cast<QMdiSubWindow*>(pWatched) != nullptr ||
            qobject_cast<QDockWidget*>(pWatched) != nullptr) {
            scheduleSave();
        }
        break;
    default:
        break;
    }
    return false;
}

void CkSessionSaver::scheduleSave() {
    if (!m_isOn) {
        return;
    }
    if (!m_timer.isActive()) {
        m_waiting.start();
        m_timer.start();
    } else if (m_waiting.elapsed() < qint64(kMaximumDelays) * m_timer.interval()) {
        m_timer.start();
    }
}

void CkSessionSaver::save() {
    // A session is not saved during an edit or a drag.
    if (QApplication::activeModalWidget() != nullptr || QApplication::activePopupWidget() != nullptr ||
        QGuiApplication::mouseButtons() != Qt::NoButton) {
        m_timer.start();
        emit postponed();
        return;
    }
    const SkWindowLayout now = SkWindowLayout::of(*m_window, *m_area, m_scope);
    if (now == m_last) {
        return;
    }
    now.save(&m_last);
    m_last = now;
    emit saved();
}
