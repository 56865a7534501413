#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QtEndian>

#include <algorithm>
#include <initializer_list>
#include <tiff.h>
#include <vector>

/// Writes TIFF files entry by entry, invalid directories included. Little endian, 32-bit offsets. Data is
/// written in pieces to keep the memory of the test small.
class HostileTiff {
public:
    struct SkEntry {
        quint16 tag;
        quint16 type;
        quint32 count;
        quint32 value; ///< the value itself, or its offset
    };

    explicit HostileTiff(const QString& file) : m_file(file) {
        m_good = m_file.open(QIODevice::ReadWrite | QIODevice::Truncate);
        append(QByteArray("II\x2a\0\0\0\0\0", 8));
    }
    /// False when the file could not be written.
    [[nodiscard]] bool close() {
        flush();
        m_file.close();
        return m_good && m_file.error() == QFileDevice::NoError;
    }

    quint32 size() const { return quint32(m_written) + quint32(m_waiting.size()); }
    /// Appends the bytes; returns their offset.
    quint32 append(const QByteArray& bytes) {
        const quint32 offset = size();
        m_waiting.append(bytes);
        if (m_waiting.size() > 1024 * 1024) {
            flush();
        }
        return offset;
    }
    /// Appends zeros that take no space on the disk; returns their offset.
    quint32 appendHole(quint32 bytes) {
        flush();
        const quint32 offset = size();
        m_written += bytes;
        m_good = m_good && m_file.resize(qint64(m_written)) && m_file.seek(qint64(m_written));
        return offset;
    }
    /// Appends a directory and links it. Entries must be in ascending order.
    void addPage(const std::vector<SkEntry>& entries) {
        if (size() % 2 != 0) {
            append(QByteArray(1, '\0'));
        }
        link(size());
        QByteArray directory;
        number(directory, quint16(entries.size()));
        for (const SkEntry& entry : entries) {
            number(directory, entry.tag);
            number(directory, entry.type);
            number(directory, entry.count);
            number(directory, entry.value);
        }
        m_link = size() + quint64(directory.size());
        number(directory, quint32(0));
        append(directory);
    }

    /// The entries of a page of one channel with one strip.
    static std::vector<SkEntry> page(quint32 width, quint32 height, quint32 bits, quint32 compression,
                                     quint32 strip, quint32 stripBytes,
                                     std::initializer_list<SkEntry> further = {}) {
        std::vector<SkEntry> entries = {
            {TIFFTAG_IMAGEWIDTH, TIFF_LONG, 1, width},
            {TIFFTAG_IMAGELENGTH, TIFF_LONG, 1, height},
            {TIFFTAG_BITSPERSAMPLE, TIFF_SHORT, 1, bits},
            {TIFFTAG_COMPRESSION, TIFF_SHORT, 1, compression},
            {TIFFTAG_PHOTOMETRIC, TIFF_SHORT, 1, PHOTOMETRIC_MINISBLACK},
            {TIFFTAG_STRIPOFFSETS, TIFF_LONG, 1, strip},
            {TIFFTAG_ROWSPERSTRIP, TIFF_LONG, 1, height},
            {TIFFTAG_STRIPBYTECOUNTS, TIFF_LONG, 1, stripBytes},
        };
        entries.insert(entries.end(), further);
        std::sort(entries.begin(), entries.end(),
                  [](const SkEntry& a, const SkEntry& b) { return a.tag < b.tag; });
        return entries;
    }
    /// A text entry; appends its bytes.
    SkEntry text(quint16 tag, const QByteArray& ascii) {
        const quint32 offset = append(ascii + '\0');
        return {tag, TIFF_ASCII, quint32(ascii.size()) + 1, offset};
    }
    /// A zlib stream of that many zeros.
    static QByteArray deflatedZeros(qsizetype bytes) { return qCompress(QByteArray(bytes, '\0'), 9).mid(4); }

private:
    template <typename Whole>
    static void number(QByteArray& bytes, Whole value) {
        const Whole little = qToLittleEndian(value);
        bytes.append(reinterpret_cast<const char*>(&little), sizeof(little));
    }
    void flush() {
        m_good = m_good && m_file.write(m_waiting) == m_waiting.size();
        m_written += quint64(m_waiting.size());
        m_waiting.clear();
    }
    void link(quint32 offset) {
        if (m_link < m_written) {
            flush();
            const quint32 little = qToLittleEndian(offset);
            m_good = m_good && m_file.seek(qint64(m_link)) &&
                     m_file.write(reinterpret_cast<const char*>(&little), 4) == 4 &&
                     m_file.seek(qint64(m_written));
        } else {
            qToLittleEndian(offset, m_waiting.data() + (m_link - m_written));
        }
    }

    QFile m_file;
    QByteArray m_waiting;
    quint64 m_written = 0;
    quint64 m_link = 4;
    bool m_good = false;
};
