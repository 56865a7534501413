#include "zuCoreGui/CkMdiView.h"

#include "host/coregui/CkFrameSlot.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkImageSource.h"
#include "zuCore/CkLut.h"

#include <QEvent>
#include <QSet>
#include <utility>

namespace {
int nextViewId() {
    static int s_iNext = 0;
    return s_iNext++;
}

// Branches may rejoin: each block is visited once.
void collectCameraHandles(CkChainable* pBlock, QSet<const CkChainable*>& visited, QList<void*>& handles) {
    if (visited.contains(pBlock)) {
        return;
    }
    visited.insert(pBlock);
    if (const auto* source = qobject_cast<CkImageSource*>(pBlock)) {
        for (void* handle : source->cameraHandles()) {
            if (!handles.contains(handle)) {
                handles.append(handle);
            }
        }
        return;
    }
    for (CkChainable* feeder : pBlock->precedessors()) {
        collectCameraHandles(feeder, visited, handles);
    }
}
} // namespace

class CkMdiView::CkPrivate : public QObject {
public:
    explicit CkPrivate(CkMdiView* pView)
        : m_pView(pView),
          m_slot([pView](std::unique_ptr<CkImageData> data) { pView->showFrame(std::move(data)); }) {
        connect(CkChainManager::instance(), &CkChainManager::chainAboutToClose, this,
                [this](CkChain* pChain) {
                    if (pChain == m_chain) {
                        detachAndNotify();
                    }
                });
        // Between deleteLater and its destructor, a view must get no more frames.
        pView->installEventFilter(this);
    }

    ~CkPrivate() override { detach(); }

    bool eventFilter(QObject* pWatched, QEvent* pEvent) override {
        if (pWatched == m_pView && pEvent->type() == QEvent::DeferredDelete) {
            detach();
        }
        return QObject::eventFilter(pWatched, pEvent);
    }

    void attach(CkChainable* pProvider) {
        m_provider = pProvider;
        CkChain* chain = pProvider != nullptr ? pProvider->chain() : nullptr;
        if (pProvider == nullptr) {
            return;
        }
        connect(pProvider, &QObject::destroyed, this, [this] { followSink(); });
        if (chain == nullptr || !chain->addSink(pProvider, &m_slot)) {
            return;
        }
        m_chain = chain;
        watchTitles();
        connect(chain, &CkChain::sinksMoved, this, [this] { followSink(); });
        connect(chain, &QObject::destroyed, this, [this] { detachAndNotify(); });
        connect(chain, &CkChain::structureChanged, this, [this] {
            watchTitles();
            emit m_pView->viewTitleChanged();
        });
    }

    void detach() {
        if (m_provider) {
            m_provider->disconnect(this);
        }
        if (m_chain) {
            m_chain->disconnect(this);
            m_chain->removeSink(&m_slot);
        }
        m_slot.clear();
        m_chain = nullptr;
        m_provider = nullptr;
        watchTitles();
    }

    void detachAndNotify() {
        detach();
        emit m_pView->dataProviderChanged();
    }

    // Called after the chain moved or dropped the sink: continues with the block that feeds it now.
    void followSink() {
        CkChainable* block = m_chain ? m_chain->sinkBlock(&m_slot) : nullptr;
        if (block == nullptr) {
            detachAndNotify();
            return;
        }
        if (block == m_provider) {
            return;
        }
        if (m_provider) {
            m_provider->disconnect(this);
        }
        m_provider = block;
        watchTitles();
        connect(block, &QObject::destroyed, this, [this] { followSink(); });
        emit m_pView->dataProviderChanged();
        emit m_pView->viewTitleChanged();
    }

    // The title of the view contains the titles of all blocks upstream.
    void watchTitles() {
        for (const QMetaObject::Connection& watched : std::as_const(m_titles)) {
            disconnect(watched);
        }
        m_titles.clear();
        for (CkChainable* block = m_chain ? m_provider.data() : nullptr; block != nullptr;
             block = block->precedessors().value(0)) {
            m_titles.append(
                connect(block, &CkChainable::configurationChanged, m_pView, &CkMdiView::viewTitleChanged));
        }
    }

    CkMdiView* const m_pView;
    CkFrameSlot m_slot;
    QPointer<CkChain> m_chain;
    QPointer<CkChainable> m_provider;
    QPointer<CkChainable> m_second;
    QList<QMetaObject::Connection> m_titles;
    // Shared with showFrame calls further up the stack: a listener that runs a nested event loop keeps its
    // frame while the next one is shown.
    std::shared_ptr<CkImageData> m_current;
    std::unique_ptr<CkLut> m_lut;
    bool m_bFlag1 = false;
    bool m_bFlag2 = false;
};

CkMdiView::CkMdiView(CkChainable* pProvider, CkChainable* pSecond)
    : m_d(std::make_unique<CkPrivate>(this)), m_iViewId(nextViewId()) {
    m_d->m_second = pSecond;
    m_d->attach(pProvider);
    connect(this, &QWidget::windowTitleChanged, this, &CkMdiView::viewTitleChanged);
}

CkMdiView::~CkMdiView() {
    m_d->detach();
}

int CkMdiView::viewCaps() const {
    return 0;
}

int CkMdiView::connectedViewId() const {
    return -1;
}

bool CkMdiView::containsData() const {
    return false;
}

QString CkMdiView::viewTitle() const {
    if (!windowTitle().isEmpty()) {
        return windowTitle();
    }
    return m_d->m_chain && m_d->m_provider ? m_d->m_chain->chainTitle(m_d->m_provider) : QString();
}

CkLut* CkMdiView::viewLut(bool* pbFlag1, bool* pbFlag2, unsigned int* puiBits) {
    if (pbFlag1 != nullptr) {
        *pbFlag1 = m_d->m_bFlag1;
    }
    if (pbFlag2 != nullptr) {
        *pbFlag2 = m_d->m_bFlag2;
    }
    if (puiBits != nullptr) {
        *puiBits = m_d->m_current ? m_d->m_current->picBuf().bitsPerChannel
                   : m_d->m_lut   ? m_d->m_lut->bitsPerChannel()
                                  : 0;
    }
    return m_d->m_lut.get();
}

void CkMdiView::setViewLut(CkLut* pLut, bool bFlag1, bool bFlag2, bool bUpdate) {
    m_d->m_bFlag1 = bFlag1;
    m_d->m_bFlag2 = bFlag2;
    if (pLut != nullptr && pLut != m_d->m_lut.get()) {
        m_d->m_lut.reset(pLut);
    }
    if (bUpdate) {
        update();
    }
}

CkImageData* CkMdiView::currentImage() {
    return m_d->m_current.get();
}

const CkImageData* CkMdiView::imageData(qint32 iFrameId) {
    return m_d->m_current && m_d->m_current->frameId() == iFrameId ? m_d->m_current.get() : nullptr;
}

CkChainable* CkMdiView::dataProvider() const {
    return m_d->m_provider;
}

CkChainable* CkMdiView::secondProvider() const {
    return m_d->m_second;
}

QList<void*> CkMdiView::cameraHandles() const {
    QList<void*> handles;
    if (m_d->m_provider) {
        QSet<const CkChainable*> visited;
        collectCameraHandles(m_d->m_provider, visited, handles);
    }
    return handles;
}

CkMdiView* CkMdiView::clone(CkChainable*, CkChainable*) {
    return nullptr;
}

void CkMdiView::updateWithConnectedImageData(const CkImageData*, bool) {}

quint64 CkMdiView::droppedFrames() const {
    return m_d->m_slot.droppedFrames();
}

void CkMdiView::showFrame(std::unique_ptr<CkImageData> arrived) {
    const std::shared_ptr<CkImageData> frame = std::move(arrived);
    if (!frame) {
        return;
    }
    m_d->m_current = frame;
    // Listeners may close the view.
    const QPointer<CkMdiView> self(this);
    emit receivedFrame(frame->frameId());
    if (self) {
        emit frameShown(m_iViewId, frame.get());
    }
}

void CkMdiView::setDataProvider(CkChainable* pProvider) {
    if (pProvider == m_d->m_provider && (pProvider == nullptr || m_d->m_chain)) {
        return;
    }
    m_d->detach();
    m_d->attach(pProvider);
    emit dataProviderChanged();
    emit viewTitleChanged();
}
