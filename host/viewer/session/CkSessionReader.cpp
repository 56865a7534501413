#include "host/viewer/session/CkSessionReader.h"

#include "host/recording/CkVideoSource.h"
#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/base/ViewerSettings.h"
#include "host/viewer/panels/camera/CkCameraController.h"
#include "host/viewer/picture/CkImageView.h"
#include "host/viewer/picture/ViewAppearance.h"
#include "host/viewer/session/SessionFormat.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"
#include "zuCore/CkImageSource.h"
#include "zuCore/CkXmlReader.h"

#include <QDomDocument>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMdiSubWindow>
#include <QSettings>

using namespace SessionFormat;

namespace {

// The order of the elements is the order of the chain's blocks.
void restorePositions(const CkChain* chain, const QDomElement& content) {
    QDomElement element = content.firstChildElement();
    for (CkChainable* block : chain->blocks()) {
        if (auto* player = qobject_cast<CkVideoSource*>(block)) {
            const qint64 frame = element.attribute(kFrame).toLongLong();
            // Queued, to run after CkPlayback, which shows the first frame of a recording that has just been
            // started.
            QObject::connect(
                chain, &CkChain::runningChanged, player, [player, frame] { player->seek(frame); },
                Qt::ConnectionType(Qt::QueuedConnection | Qt::SingleShotConnection));
        }
        element = element.nextSiblingElement();
    }
}

void restorePlace(const CkMdiView* view, const QDomElement& element) {
    auto* frame = qobject_cast<QMdiSubWindow*>(view->parentWidget());
    const QRect place(element.attribute(kX).toInt(), element.attribute(kY).toInt(),
                      element.attribute(kWidth).toInt(), element.attribute(kHeight).toInt());
    if (frame == nullptr || place.isEmpty()) {
        return;
    }
    frame->setGeometry(place);
    if (element.attribute(kMaximized).toInt() != 0) {
        frame->showMaximized();
    }
}

} // namespace

CkSessionReader::CkSessionReader(CkViewArea* pArea, CkCameraController* pCameras)
    : m_area(pArea), m_cameras(pCameras) {}

SkRestoredSession CkSessionReader::restoreLast(CkViewArea* pArea, CkCameraController* pCameras) {
    const auto settings = ViewerSettings::open();
    if (!settings->value(ViewerSettings::kReopenCamerasKey, true).toBool()) {
        return {};
    }
    const SkRestoredSession restored =
        CkSessionReader(pArea, pCameras).restore(settings->value(ViewerSettings::kSessionKey).toByteArray());
    for (const QString& problem : restored.problems) {
        qWarning("%s", qUtf8Printable(problem));
    }
    return restored;
}

SkRestoredSession CkSessionReader::restore(const QByteArray& text) {
    if (text.isEmpty()) {
        return m_restored;
    }
    QDomDocument doc;
    QString reason = tr("it is no session");
    const bool parsed = CkXmlReader::read(text, doc, reason);
    const QDomElement root = doc.documentElement();
    if (!parsed || root.tagName() != kSession || root.attribute(kVersionNumber).toInt() > kVersion) {
        m_restored.problems.append(
            tr("What was open in the last session cannot be read (%1); the viewer starts empty.")
                .arg(reason));
        return m_restored;
    }
    for (QDomElement e = root.firstChildElement(kCamera); !e.isNull(); e = e.nextSiblingElement(kCamera)) {
        openCamera(e);
    }
    for (QDomElement e = root.firstChildElement(kChain); !e.isNull(); e = e.nextSiblingElement(kChain)) {
        openChain(e);
    }
    for (QDomElement e = root.firstChildElement(kView); !e.isNull(); e = e.nextSiblingElement(kView)) {
        openView(e);
    }
    start();
    return m_restored;
}

void CkSessionReader::set3dViewOpened(CkMdiView& view) {
    view.setProperty(kPending3dView, QVariant());
}

void CkSessionReader::openCamera(const QDomElement& element) {
    const QString id = element.attribute(kId);
    QString error;
    void* handle = m_cameras->openCamera(id, false, &error);
    if (handle == nullptr) {
        m_restored.problems.append(tr("Camera \"%1\" of the last session: %2").arg(id, error));
        m_missing.append(id);
    } else if (element.attribute(kRunning).toInt() != 0) {
        m_running.append(handle);
    }
}

void CkSessionReader::openChain(const QDomElement& element) {
    const QDomElement content = element.firstChildElement(kChain);
    CkChainManager* chains = CkChainManager::instance();
    CkChain* chain = needsMissingCamera(content) ? nullptr : chains->createChain();
    QString error;
    if (chain != nullptr && !chain->load(content, &error)) {
        m_restored.problems.append(tr("A chain of the last session: %1").arg(error));
        chains->closeChain(chain);
        chain = nullptr;
    }
    if (chain != nullptr) {
        restorePositions(chain, content);
        reportMissingRecordings(*chain);
    }
    m_chains.append(chain);
}

void CkSessionReader::reportMissingRecordings(const CkChain& chain) {
    for (CkChainable* block : chain.imageSources()) {
        const auto* player = qobject_cast<const CkVideoSource*>(block);
        if (player != nullptr && player->frameCount() == 0) {
            m_restored.problems.append(tr("A recording of the last session: %1").arg(player->errorMessage()));
        }
    }
}

// The source of such a chain would use another camera instead.
bool CkSessionReader::needsMissingCamera(const QDomElement& chain) const {
    for (QDomElement e = chain.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
        if (m_missing.contains(e.attribute(kCamera))) {
            return true;
        }
    }
    return false;
}

void CkSessionReader::openView(const QDomElement& element) {
    CkChain* chain = m_chains.value(element.attribute(kChain).toInt());
    CkChainable* block =
        chain != nullptr ? chain->blocks().value(element.attribute(kBlock).toInt()) : nullptr;
    if (block == nullptr) {
        return;
    }
    auto* view = new CkImageView(block);
    m_area->addView(view);
    restorePlace(view, element);
    ViewAppearance::applyAfterFirstPicture(
        *view, QJsonDocument::fromJson(element.attribute(kAppearance).toUtf8()).object());
    m_shown.append(chain);
    if (element.attribute(kHas3d).toInt() != 0) {
        m_restored.viewsWith3d.append(view->viewId());
        view->setProperty(kPending3dView, true);
    }
    if (element.attribute(kActive).toInt() != 0) {
        m_active = view->viewId();
    }
}

void CkSessionReader::start() {
    for (CkChain* chain : m_chains) {
        if (chain != nullptr && !m_shown.contains(chain)) {
            CkChainManager::instance()->closeChain(chain);
        } else if (chain != nullptr && qobject_cast<CkVideoSource*>(chain->imageSources().value(0))) {
            // Shows the frame; a camera's chain starts with its camera.
            chain->start();
        }
    }
    for (void* handle : m_running) {
        m_cameras->start(handle);
    }
    if (m_active >= 0) {
        m_area->setActiveView(m_active);
    }
}
