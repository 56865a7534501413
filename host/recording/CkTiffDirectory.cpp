#include "host/recording/CkTiffDirectory.h"

#include <QtEndian>

#include <tiff.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr quint64 kEntryBytes = 20;

template <typename Value>
void append(QByteArray& bytes, Value value) {
    bytes.append(reinterpret_cast<const char*>(&value), sizeof(value));
}

} // namespace

quint64 CkTiffDirectory::alignedUp(quint64 uiOffset, quint64 uiAlignment) {
    return (uiOffset + uiAlignment - 1) / uiAlignment * uiAlignment;
}

void CkTiffDirectory::addShort(quint16 uiTag, quint16 uiValue, quint32 uiCount) {
    quint16 values[4];
    std::fill(values, values + 4, qToLittleEndian(uiValue));
    quint64 field = 0;
    std::memcpy(&field, values, sizeof(quint16) * uiCount);
    addEntry(uiTag, TIFF_SHORT, uiCount, field);
}

void CkTiffDirectory::addLong(quint16 uiTag, quint32 uiValue) {
    addEntry(uiTag, TIFF_LONG, 1, qToLittleEndian(quint64(uiValue)));
}

void CkTiffDirectory::addLong8(quint16 uiTag, quint64 uiValue) {
    addEntry(uiTag, TIFF_LONG8, 1, qToLittleEndian(uiValue));
}

void CkTiffDirectory::addText(quint16 uiTag, const QByteArray& ascii) {
    const quint64 count = quint64(ascii.size()) + 1;
    quint64 field = 0;
    if (count <= sizeof(field)) {
        std::memcpy(&field, ascii.constData(), size_t(count));
    } else {
        field = qToLittleEndian(m_offset + quint64(m_outside.size()));
        m_outside.append(ascii).append('\0');
    }
    addEntry(uiTag, TIFF_ASCII, count, field);
}

CkTiffDirectory::SkBytes CkTiffDirectory::toBytes() const {
    const quint64 count = quint64(m_entries.size()) / kEntryBytes;
    // The link is aligned to 8 bytes: it never crosses a memory page, so that no concurrent reader sees a
    // torn value when the next page is linked.
    quint64 start = alignedUp(m_offset + quint64(m_outside.size()), 8);
    start += count % 2 == 0 ? 0 : 4;
    SkBytes result;
    result.bytes = m_outside;
    result.directory = start - m_offset;
    result.bytes.append(qsizetype(result.directory) - m_outside.size(), '\0');
    append(result.bytes, qToLittleEndian(count));
    result.bytes.append(m_entries);
    result.link = quint64(result.bytes.size());
    append(result.bytes, quint64(0));
    return result;
}

void CkTiffDirectory::addEntry(quint16 uiTag, quint16 uiType, quint64 uiCount, quint64 uiField) {
    append(m_entries, qToLittleEndian(uiTag));
    append(m_entries, qToLittleEndian(uiType));
    append(m_entries, qToLittleEndian(uiCount));
    append(m_entries, uiField);
}
