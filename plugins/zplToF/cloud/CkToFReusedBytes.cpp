#include "plugins/zplToF/cloud/CkToFReusedBytes.h"

#include <utility>

void CkToFReusedBytes::prepare(qsizetype iSize) {
    m_fresh = QByteArray();
    m_size = iSize;
    // The current array first: while it is not shared, one array suffices.
    for (size_t i = 0; i < m_slots.size(); i++) {
        m_next = (m_current + i) % m_slots.size();
        const QByteArray& bytes = m_slots[m_next].bytes;
        if (bytes.size() == iSize && bytes.isDetached()) {
            return;
        }
    }
    m_next = (m_current + 1) % m_slots.size();
    m_fresh = QByteArray(iSize, Qt::Uninitialized);
}

char* CkToFReusedBytes::begin() {
    if (!m_fresh.isNull()) {
        m_slots[m_next] = {std::exchange(m_fresh, QByteArray()), -1};
    }
    m_current = m_next;
    for (SkSlot& slot : m_slots) {
        if (slot.bytes.size() != m_size) {
            slot = {};
        }
    }
    return m_slots[m_current].bytes.data();
}
