#pragma once

#include <QByteArray>
#include <QtGlobal>

/// Composes the directory of a little-endian BigTIFF page, together with the values that do not fit into its
/// entries, for a known file offset. TIFF requires ascending tags: entries are to be added in that order.
class CkTiffDirectory {
public:
    explicit CkTiffDirectory(quint64 uiOffset) : m_offset(uiOffset) {}

    /// The first offset from uiOffset on that is a multiple of uiAlignment.
    static quint64 alignedUp(quint64 uiOffset, quint64 uiAlignment);

    void addShort(quint16 uiTag, quint16 uiValue, quint32 uiCount = 1); ///< The value uiCount times, 1 to 4.
    void addLong(quint16 uiTag, quint32 uiValue);
    void addLong8(quint16 uiTag, quint64 uiValue);
    void addText(quint16 uiTag, const QByteArray& ascii);

    /// The bytes to write at the file offset, and where in them the directory begins and its link to the next
    /// directory, which is 0, lies.
    struct SkBytes {
        QByteArray bytes;
        quint64 directory = 0;
        quint64 link = 0;
    };
    SkBytes toBytes() const;

private:
    void addEntry(quint16 uiTag, quint16 uiType, quint64 uiCount, quint64 uiField);

    quint64 m_offset;
    QByteArray m_entries;
    QByteArray m_outside; ///< values too large for their entries
};
