#include "host/viewer/session/SessionWriter.h"

#include "host/recording/CkVideoSource.h"
#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/picture/CkImageView.h"
#include "host/viewer/picture/ViewAppearance.h"
#include "host/viewer/session/SessionFormat.h"
#include "zuCore/CkCameraManager.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkImageSource.h"

#include <QDomDocument>
#include <QJsonDocument>
#include <QMdiSubWindow>
#include <QSet>

using namespace SessionFormat;

namespace {

bool canBeRestored(const CkChain* chain) {
    const QList<CkChainable*> sources = chain->imageSources();
    for (const CkChainable* block : sources) {
        const auto* source = qobject_cast<const CkImageSource*>(block);
        if (qobject_cast<const CkVideoSource*>(block) == nullptr &&
            (source == nullptr || source->cameraHandles().isEmpty())) {
            return false;
        }
    }
    return !sources.isEmpty();
}

void writeCameras(QDomElement& root) {
    CkCameraManager* cameras = CkCameraManager::instance();
    for (void* handle : cameras->openedCameras()) {
        SkCameraInfo info;
        if (cameras->cameraInfo(handle, info)) {
            QDomElement camera = root.ownerDocument().createElement(kCamera);
            camera.setAttribute(kId, info.id);
            camera.setAttribute(kRunning, int(cameras->isAcquiring(handle)));
            root.appendChild(camera);
        }
    }
}

// CkChain::save() writes one element per block, in the order of blocks().
void writePositions(const CkChain* chain, const QDomElement& content) {
    QDomElement element = content.firstChildElement();
    for (CkChainable* block : chain->blocks()) {
        const auto* player = qobject_cast<const CkVideoSource*>(block);
        if (player != nullptr && player->position() >= 0) {
            element.setAttribute(kFrame, player->position());
        }
        element = element.nextSiblingElement();
    }
}

bool writeChain(QDomElement& root, const CkChain* chain) {
    QDomDocument doc = root.ownerDocument();
    QDomElement element = doc.createElement(kChain);
    QDomElement content = doc.createElement(kChain);
    if (!chain->save(doc, content)) {
        return false;
    }
    writePositions(chain, content);
    element.appendChild(content);
    root.appendChild(element);
    return true;
}

void writePlace(const CkMdiView* view, QDomElement& element) {
    if (const auto* frame = qobject_cast<const QMdiSubWindow*>(view->parentWidget())) {
        const QRect place = frame->isMaximized() ? frame->normalGeometry() : frame->geometry();
        element.setAttribute(kX, place.x());
        element.setAttribute(kY, place.y());
        element.setAttribute(kWidth, place.width());
        element.setAttribute(kHeight, place.height());
        element.setAttribute(kMaximized, int(frame->isMaximized()));
    }
}

QSet<int> viewsFollowed(const CkViewArea& area) {
    QSet<int> followed;
    for (const CkMdiView* view : area.views()) {
        if (view->connectedViewId() >= 0) {
            followed.insert(view->connectedViewId());
        }
    }
    return followed;
}

} // namespace

QByteArray SessionWriter::write(const CkViewArea& area) {
    QDomDocument doc;
    QDomElement root = doc.createElement(kSession);
    root.setAttribute(kVersionNumber, kVersion);
    doc.appendChild(root);
    writeCameras(root);
    QList<const CkChain*> chains;
    const QSet<int> followed = viewsFollowed(area);
    for (const CkMdiView* view : area.views()) {
        CkChainable* block = view->dataProvider();
        const CkChain* chain = block != nullptr ? block->chain() : nullptr;
        const auto* picture = qobject_cast<const CkImageView*>(view);
        if (picture == nullptr || chain == nullptr || !canBeRestored(chain)) {
            continue;
        }
        if (!chains.contains(chain)) {
            if (!writeChain(root, chain)) {
                continue;
            }
            chains.append(chain);
        }
        QDomElement element = doc.createElement(kView);
        element.setAttribute(kChain, int(chains.indexOf(chain)));
        element.setAttribute(kBlock, int(chain->blocks().indexOf(block)));
        element.setAttribute(
            kHas3d, int(followed.contains(view->viewId()) || view->property(kPending3dView).toBool()));
        element.setAttribute(kActive, int(view->viewId() == area.activeViewId()));
        writePlace(view, element);
        const QJsonObject appearance = ViewAppearance::whole(*picture);
        if (!appearance.isEmpty()) {
            element.setAttribute(kAppearance,
                                 QString::fromUtf8(QJsonDocument(appearance).toJson(QJsonDocument::Compact)));
        }
        root.appendChild(element);
    }
    return root.hasChildNodes() ? doc.toByteArray(1) : QByteArray();
}
