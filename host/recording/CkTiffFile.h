#pragma once

#include <QString>

#include <functional>
#include <vector>

/// A TIFF or BigTIFF file opened for reading, with the index of its pages. After open and readIndex any
/// number of threads may read.
class CkTiffFile {
public:
    /// Pages found so far and the share of the file they lie in, 0 to 1. Returning false ends the search.
    using ProgressFunction = std::function<bool(qint64 iPages, double fShare)>;

    CkTiffFile() = default;
    ~CkTiffFile();
    CkTiffFile(const CkTiffFile&) = delete;
    CkTiffFile& operator=(const CkTiffFile&) = delete;

    /// False, with sReason, when the file cannot be read or is no TIFF file.
    bool open(const QString& sFileName, QString& sReason);

    enum class EkIndex { Complete, Damaged, Cancelled };
    /// Follows the chain of pages. Damaged: the pages before the damage are indexed, sReason describes the
    /// error in the next one. A page beyond iMaximumPages counts as damage.
    EkIndex readIndex(qint64 iMaximumPages, const ProgressFunction& progress, QString& sReason);

    /// False, with sReason, for a page whose directory requires more memory than any legitimate one
    /// (SkReadLimits::kDirectoryBytes). To be checked before libtiff reads the directory, because it loads
    /// every tag, known or not.
    bool checkDirectory(quint64 uiPageOffset, QString& sReason) const;

    const std::vector<quint64>& pageOffsets() const { return m_pages; }
    quint64 byteCount() const { return m_bytes; }
    QString fileName() const { return m_fileName; }

    /// A header for this file with another first page. Returns its length, at most 16.
    size_t headerFor(quint64 uiPageOffset, quint8* pHeader) const;

    /// Number of bytes read: fewer than requested at the end of the file, -1 on an error.
    qint64 readAt(void* pBytes, quint64 uiBytes, quint64 uiOffset) const;

private:
    quint64 number(const quint8* pBytes, int iBytes) const;
    bool readCount(quint64 uiOffset, const quint8* pBytes, qint64 iBytes, quint64& uiCount,
                   QString& sReason) const;
    bool nextPage(quint64 uiOffset, quint64& uiNext, QString& sReason) const;
    quint64 entryBytes() const { return m_bigTiff ? 20 : 12; }
    void cutCycle(quint64 uiLength);

    int m_file = -1;
    QString m_fileName;
    quint64 m_bytes = 0;
    bool m_bigEndian = false;
    bool m_bigTiff = false;
    std::vector<quint64> m_pages;
};
