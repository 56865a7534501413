#include "host/viewer/session/CkSessionMemory.h"

#include "host/recording/CkVideoSource.h"
#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/panels/camera/CkCameraController.h"
#include "host/viewer/picture/CkImageCanvas.h"
#include "host/viewer/picture/CkImageView.h"
#include "host/viewer/playback/CkRecordingNotes.h"
#include "host/viewer/shell/CkMainWindow.h"
#include "zuCore/CkCameraManager.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkImageSource.h"
#include "zuCore/CkXmlReader.h"

#include <QDomDocument>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMdiSubWindow>
#include <QSet>

namespace {

constexpr int kVersion = 1;

// Of a view that waits for its first frame: what it will look like, and that a 3D view is to follow it. A
// session that ends before that frame hands both on.
constexpr const char* kLook = "zuSessionLook";
constexpr const char* kFollower = "zuSessionFollower";

QString word(const char* text) {
    return QString::fromLatin1(text);
}

bool canComeBack(const CkChain* chain) {
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

// The elements of a chain's blocks stand in the order of its blocks.
void describePositions(const CkChain* chain, const QDomElement& content) {
    QDomElement element = content.firstChildElement();
    for (CkChainable* block : chain->blocks()) {
        const auto* player = qobject_cast<const CkVideoSource*>(block);
        if (player != nullptr && player->position() >= 0) {
            element.setAttribute(word("frame"), player->position());
        }
        element = element.nextSiblingElement();
    }
}

void restorePositions(const CkChain* chain, const QDomElement& content) {
    QDomElement element = content.firstChildElement();
    for (CkChainable* block : chain->blocks()) {
        if (auto* player = qobject_cast<CkVideoSource*>(block)) {
            const qint64 frame = element.attribute(word("frame")).toLongLong();
            // Behind whoever shows the first frame of what has just been started.
            QObject::connect(
                chain, &CkChain::runningChanged, player, [player, frame] { player->seek(frame); },
                Qt::ConnectionType(Qt::QueuedConnection | Qt::SingleShotConnection));
        }
        element = element.nextSiblingElement();
    }
}

QMdiSubWindow* frameOf(const CkMdiView* view) {
    return qobject_cast<QMdiSubWindow*>(view->parentWidget());
}

void describePlace(const CkMdiView* view, QDomElement& element) {
    if (const QMdiSubWindow* frame = frameOf(view)) {
        const QRect place = frame->isMaximized() ? frame->normalGeometry() : frame->geometry();
        element.setAttribute(word("x"), place.x());
        element.setAttribute(word("y"), place.y());
        element.setAttribute(word("width"), place.width());
        element.setAttribute(word("height"), place.height());
        element.setAttribute(word("maximized"), int(frame->isMaximized()));
    }
}

void restorePlace(const CkMdiView* view, const QDomElement& element) {
    QMdiSubWindow* frame = frameOf(view);
    const QRect place(element.attribute(word("x")).toInt(), element.attribute(word("y")).toInt(),
                      element.attribute(word("width")).toInt(), element.attribute(word("height")).toInt());
    if (frame == nullptr || place.isEmpty()) {
        return;
    }
    frame->setGeometry(place);
    if (element.attribute(word("maximized")).toInt() != 0) {
        frame->showMaximized();
    }
}

QJsonObject lookOf(const CkImageView& view) {
    const QVariant waiting = view.property(kLook);
    if (waiting.isValid()) {
        return waiting.toJsonObject();
    }
    if (const_cast<CkImageView&>(view).currentImage() == nullptr) {
        return {};
    }
    QJsonObject look = CkRecordingNotes::viewSettings(&view);
    if (view.autoContrast()) {
        // They follow the picture.
        look.remove(word("low"));
        look.remove(word("high"));
    }
    look.insert(word("saturated"), view.marksSaturated());
    look.insert(word("legend"), view.showsLegend());
    if (!view.canvas()->isFitting()) {
        look.insert(word("zoom"), view.canvas()->zoom());
    }
    return look;
}

void applyLook(CkImageView& view, const QJsonObject& look) {
    CkRecordingNotes::applyViewSettings(&view, look);
    view.setMarksSaturated(look.value(word("saturated")).toBool(view.marksSaturated()));
    view.setShowsLegend(look.value(word("legend")).toBool(view.showsLegend()));
    const double zoom = look.value(word("zoom")).toDouble();
    if (zoom >= CkImageCanvas::kMinimumZoom && zoom <= CkImageCanvas::kMaximumZoom) {
        view.canvas()->setZoom(zoom);
    }
}

void restoreLook(CkImageView* view, const QDomElement& element) {
    const QJsonObject look = QJsonDocument::fromJson(element.attribute(word("look")).toUtf8()).object();
    if (look.isEmpty()) {
        return;
    }
    view->setProperty(kLook, look);
    // Channels and colours are those of a picture; the first one brings the view's own.
    QObject::connect(
        view, &CkMdiView::frameShown, view,
        [view] {
            const QJsonObject waiting = view->property(kLook).toJsonObject();
            view->setProperty(kLook, QVariant());
            applyLook(*view, waiting);
        },
        Qt::SingleShotConnection);
}

/// Reads the text and opens what it names.
class CkRestorer {
    Q_DECLARE_TR_FUNCTIONS(CkSessionMemory)

public:
    explicit CkRestorer(CkMainWindow& window) : m_window(window) {}

    void restore(const QDomElement& root) {
        const QString camera = word("camera");
        const QString chain = word("chain");
        const QString view = word("view");
        for (QDomElement e = root.firstChildElement(camera); !e.isNull(); e = e.nextSiblingElement(camera)) {
            openCamera(e);
        }
        for (QDomElement e = root.firstChildElement(chain); !e.isNull(); e = e.nextSiblingElement(chain)) {
            openChain(e);
        }
        for (QDomElement e = root.firstChildElement(view); !e.isNull(); e = e.nextSiblingElement(view)) {
            openView(e);
        }
        start();
    }

    CkSessionMemory::SkRestored m_restored;

private:
    void openCamera(const QDomElement& element) {
        const QString id = element.attribute(word("id"));
        QString error;
        void* handle = m_window.cameras()->openCamera(id, false, &error);
        if (handle == nullptr) {
            m_restored.problems.append(tr("Camera \"%1\" of the last session: %2").arg(id, error));
            m_missing.append(id);
        } else if (element.attribute(word("running")).toInt() != 0) {
            m_running.append(handle);
        }
    }

    void openChain(const QDomElement& element) {
        const QDomElement content = element.firstChildElement(word("chain"));
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
            nameMissingRecordings(*chain);
        }
        m_chains.append(chain);
    }

    void nameMissingRecordings(const CkChain& chain) {
        for (CkChainable* block : chain.imageSources()) {
            const auto* player = qobject_cast<const CkVideoSource*>(block);
            if (player != nullptr && player->frameCount() == 0) {
                m_restored.problems.append(
                    tr("A recording of the last session: %1").arg(player->errorMessage()));
            }
        }
    }

    // Its source would take another camera instead.
    bool needsMissingCamera(const QDomElement& chain) const {
        for (QDomElement e = chain.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
            if (m_missing.contains(e.attribute(word("camera")))) {
                return true;
            }
        }
        return false;
    }

    void openView(const QDomElement& element) {
        CkChain* chain = m_chains.value(element.attribute(word("chain")).toInt());
        CkChainable* block =
            chain != nullptr ? chain->blocks().value(element.attribute(word("block")).toInt()) : nullptr;
        if (block == nullptr) {
            return;
        }
        auto* view = new CkImageView(block);
        m_window.area()->addView(view);
        restorePlace(view, element);
        restoreLook(view, element);
        m_shown.append(chain);
        if (element.attribute(word("has3d")).toInt() != 0) {
            m_restored.viewsWith3d.append(view->viewId());
            view->setProperty(kFollower, true);
        }
        if (element.attribute(word("active")).toInt() != 0) {
            m_iActive = view->viewId();
        }
    }

    void start() {
        for (CkChain* chain : m_chains) {
            if (chain != nullptr && !m_shown.contains(chain)) {
                CkChainManager::instance()->closeChain(chain);
            } else if (chain != nullptr && qobject_cast<CkVideoSource*>(chain->imageSources().value(0))) {
                // Shows the frame; a camera's chain starts with its camera.
                chain->start();
            }
        }
        for (void* handle : m_running) {
            m_window.cameras()->start(handle);
        }
        if (m_iActive >= 0) {
            m_window.area()->setActiveView(m_iActive);
        }
    }

    CkMainWindow& m_window;
    QList<CkChain*> m_chains; ///< null for those that cannot be opened, so that the numbers hold
    QList<CkChain*> m_shown;
    QList<void*> m_running;
    QStringList m_missing;
    int m_iActive = -1;
};

} // namespace

QByteArray CkSessionMemory::describe(const CkMainWindow& window) {
    QDomDocument doc;
    QDomElement root = doc.createElement(word("session"));
    root.setAttribute(word("version"), kVersion);
    doc.appendChild(root);
    CkCameraManager* cameras = CkCameraManager::instance();
    for (void* handle : cameras->openedCameras()) {
        SkCameraInfo info;
        if (cameras->cameraInfo(handle, info)) {
            QDomElement camera = doc.createElement(word("camera"));
            camera.setAttribute(word("id"), info.id);
            camera.setAttribute(word("running"), int(cameras->isAcquiring(handle)));
            root.appendChild(camera);
        }
    }
    QList<const CkChain*> chains;
    QSet<int> followed;
    for (const CkMdiView* view : window.area()->views()) {
        if (view->connectedViewId() >= 0) {
            followed.insert(view->connectedViewId());
        }
    }
    for (const CkMdiView* view : window.area()->views()) {
        const CkChainable* block = view->dataProvider();
        const CkChain* chain = block != nullptr ? block->chain() : nullptr;
        const auto* picture = qobject_cast<const CkImageView*>(view);
        if (picture == nullptr || chain == nullptr || !canComeBack(chain)) {
            continue;
        }
        if (!chains.contains(chain)) {
            QDomElement element = doc.createElement(word("chain"));
            QDomElement content = doc.createElement(word("chain"));
            if (!chain->save(doc, content)) {
                continue;
            }
            describePositions(chain, content);
            element.appendChild(content);
            root.appendChild(element);
            chains.append(chain);
        }
        QDomElement element = doc.createElement(word("view"));
        element.setAttribute(word("chain"), int(chains.indexOf(chain)));
        element.setAttribute(word("block"), int(chain->blocks().indexOf(const_cast<CkChainable*>(block))));
        element.setAttribute(word("has3d"),
                             int(followed.contains(view->viewId()) || view->property(kFollower).toBool()));
        element.setAttribute(word("active"), int(view->viewId() == window.area()->activeViewId()));
        describePlace(view, element);
        const QJsonObject look = lookOf(*picture);
        if (!look.isEmpty()) {
            element.setAttribute(word("look"),
                                 QString::fromUtf8(QJsonDocument(look).toJson(QJsonDocument::Compact)));
        }
        root.appendChild(element);
    }
    return root.hasChildNodes() ? doc.toByteArray(1) : QByteArray();
}

void CkSessionMemory::followerOpened(CkMdiView& view) {
    view.setProperty(kFollower, QVariant());
}

CkSessionMemory::SkRestored CkSessionMemory::restore(CkMainWindow& window, const QByteArray& text) {
    CkRestorer restorer(window);
    if (text.isEmpty()) {
        return restorer.m_restored;
    }
    QDomDocument doc;
    QString reason = tr("it is no session");
    const bool parsed = CkXmlReader::read(text, doc, reason);
    const QDomElement root = doc.documentElement();
    if (!parsed || root.tagName() != QLatin1String("session") ||
        root.attribute(word("version")).toInt() > kVersion) {
        restorer.m_restored.problems.append(
            tr("What was open in the last session cannot be read (%1); the viewer starts empty.")
                .arg(reason));
        return restorer.m_restored;
    }
    restorer.restore(root);
    return restorer.m_restored;
}
