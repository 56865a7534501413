#include "zuCore/CkChainable.h"

#include "host/core/CkChainPrivate.h"
#include "zuCore/CkChain.h"

#include <QDomElement>
#include <QMetaClassInfo>

CkChainable::CkChainable(int iBlockKind, QObject* pParent) : QObject(pParent), m_iBlockKind(iBlockKind) {}

CkChainable::~CkChainable() {
    // Blocks are to be deleted through the chain manager; should one be deleted directly, its chain must not
    // keep a dangling pointer.
    if (CkChain* const owner = chain()) {
        owner->m_d->removeDeleted(this);
    }
}

QString CkChainable::title() const {
    const int index = metaObject()->indexOfClassInfo("CustomName");
    return index < 0 ? QString::fromLatin1(metaObject()->className())
                     : QString::fromUtf8(metaObject()->classInfo(index).value());
}

bool CkChainable::acceptsDataFrom(CkChainable* pUpstream) {
    return pUpstream != nullptr;
}

int CkChainable::buffersCountInMemoryPool() const {
    return 0;
}

void CkChainable::setupStart() {}

void CkChainable::setupStop() {}

IkChainData* CkChainable::processData(IkChainData* pData) {
    return pData;
}

bool CkChainable::saveSettings(QDomDocument& doc, QDomElement& element) const {
    Q_UNUSED(doc);
    element.setAttribute(QStringLiteral("state"), state());
    return true;
}

bool CkChainable::loadSettings(const QDomElement& element) {
    const QString text = element.attribute(QStringLiteral("state"));
    setState(text.toInt() == Blocked ? Blocked : Ready);
    return true;
}

bool CkChainable::hasHelp() const {
    return false;
}

void CkChainable::help(QString& sText) {
    sText.clear();
}

QWidget* CkChainable::configurationWidget() {
    return nullptr;
}

CkChainable* CkChainable::clone() {
    return nullptr;
}

CkChain* CkChainable::chain() const {
    const std::lock_guard lock(m_mutex);
    return m_pChain;
}

QList<CkChainable*> CkChainable::precedessors() const {
    const CkChain* const owner = chain();
    return owner == nullptr ? QList<CkChainable*>() : owner->precedessors(this);
}

int CkChainable::state() const {
    const std::lock_guard lock(m_mutex);
    return m_iState;
}

void CkChainable::setState(int iState) {
    {
        const std::lock_guard lock(m_mutex);
        if (m_iState == iState) {
            return;
        }
        m_iState = iState;
    }
    emit stateChanged(iState);
}

QString CkChainable::message() const {
    return m_sOwnMessage.isEmpty() ? m_sChainMessage : m_sOwnMessage;
}

QString CkChainable::errorMessage() const {
    const std::lock_guard lock(m_mutex);
    // When no thread holds the messages, both are the same.
    return m_messageHolder == std::this_thread::get_id() ? message() : m_sSignalledMessage;
}

void CkChainable::setErrorMessage(const QString& sMessage) {
    std::unique_lock lock(m_mutex);
    m_sOwnMessage = sMessage;
    notifyMessage(std::move(lock));
}

void CkChainable::setChainMessage(const QString& sMessage) {
    std::unique_lock lock(m_mutex);
    m_sChainMessage = sMessage;
    notifyMessage(std::move(lock));
}

void CkChainable::holdMessages() {
    const std::lock_guard lock(m_mutex);
    m_messageHolder = std::this_thread::get_id();
}

void CkChainable::releaseMessages() {
    std::unique_lock lock(m_mutex);
    m_messageHolder = {};
    notifyMessage(std::move(lock));
}

void CkChainable::notifyMessage(std::unique_lock<std::mutex> lock) {
    const QString now = message();
    if (m_messageHolder != std::thread::id() || now == m_sSignalledMessage) {
        return;
    }
    m_sSignalledMessage = now;
    lock.unlock();
    emit errorMessageChanged(now);
}

void CkChainable::reportDropped() {
    m_bFrameDropped = true;
}

CkMemoryPool* CkChainable::memoryPool() const {
    const CkChain* const owner = chain();
    return owner == nullptr ? nullptr : owner->memoryPool();
}
