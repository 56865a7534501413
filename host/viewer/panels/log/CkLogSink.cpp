#include "host/viewer/panels/log/CkLogSink.h"

CkLogSink* CkLogSink::instance() {
    // Never deleted: threads may still log while the program ends.
    static auto* sink = new CkLogSink;
    return sink;
}

void CkLogSink::install() {
    const QMutexLocker lock(&m_mutex);
    if (!m_installed) {
        qRegisterMetaType<SkLogEntry>();
        m_previous = qInstallMessageHandler(&CkLogSink::handle);
        m_installed = true;
    }
}

void CkLogSink::uninstall() {
    const QMutexLocker lock(&m_mutex);
    if (m_installed) {
        qInstallMessageHandler(m_previous);
        m_installed = false;
    }
}

QList<SkLogEntry> CkLogSink::entries() const {
    const QMutexLocker lock(&m_mutex);
    return m_entries;
}

void CkLogSink::add(const SkLogEntry& entry) {
    {
        const QMutexLocker lock(&m_mutex);
        if (m_entries.size() >= kMaximumEntries) {
            m_entries.removeFirst();
        }
        m_entries.append(entry);
    }
    emit entryAdded(entry);
}

void CkLogSink::handle(QtMsgType type, const QMessageLogContext& context, const QString& sText) {
    CkLogSink* sink = instance();
    if (sink->m_previous != nullptr) {
        sink->m_previous(type, context, sText);
    }
    // A slot that logs while it receives an entry must not recurse.
    static thread_local bool s_bInside = false;
    if (s_bInside) {
        return;
    }
    s_bInside = true;
    SkLogEntry entry;
    entry.time = QDateTime::currentDateTime();
    entry.type = type;
    entry.category = QString::fromUtf8(context.category);
    entry.text = sText;
    sink->add(entry);
    s_bInside = false;
}
