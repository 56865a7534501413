#include "host/recording/CkTiffFile.h"

#include "host/recording/SkReadLimits.h"

#include <QCoreApplication>
#include <QFile>

#include <tiff.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr quint64 kMaximumEntries = 4096; // of a directory; two dozen are usual
constexpr qint64 kPagesPerReport = 256;

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(CkRecordingReader)
};

quint64 bytesOfType(quint64 type) {
    switch (type) {
    case TIFF_BYTE:
    case TIFF_ASCII:
    case TIFF_SBYTE:
    case TIFF_UNDEFINED:
        return 1;
    case TIFF_SHORT:
    case TIFF_SSHORT:
        return 2;
    case TIFF_LONG:
    case TIFF_SLONG:
    case TIFF_FLOAT:
    case TIFF_IFD:
        return 4;
    default:
        return 8;
    }
}

QString systemReason() {
    return QString::fromLocal8Bit(std::strerror(errno));
}

} // namespace

CkTiffFile::~CkTiffFile() {
    if (m_file >= 0) {
        ::close(m_file);
    }
}

qint64 CkTiffFile::readAt(void* pBytes, quint64 uiBytes, quint64 uiOffset) const {
    if (uiOffset >= m_bytes) {
        return 0;
    }
    auto* next = static_cast<char*>(pBytes);
    quint64 wanted = std::min(uiBytes, m_bytes - uiOffset);
    while (wanted > 0) {
        const ssize_t done = ::pread(m_file, next, wanted, off_t(uiOffset));
        if (done < 0 && errno == EINTR) {
            continue;
        }
        if (done < 0) {
            return -1;
        }
        if (done == 0) {
            break; // the file was truncated meanwhile
        }
        next += done;
        uiOffset += quint64(done);
        wanted -= quint64(done);
    }
    return next - static_cast<char*>(pBytes);
}

quint64 CkTiffFile::number(const quint8* pBytes, int iBytes) const {
    quint64 value = 0;
    for (int i = 0; i < iBytes; ++i) {
        value = value << 8U | pBytes[m_bigEndian ? i : iBytes - 1 - i];
    }
    return value;
}

bool CkTiffFile::open(const QString& sFileName, QString& sReason) {
    m_fileName = sFileName;
    // O_NONBLOCK: opening a pipe without a writer would block.
    m_file = ::open(QFile::encodeName(sFileName).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    struct stat status = {};
    if (m_file < 0 || ::fstat(m_file, &status) != 0) {
        sReason = Texts::tr("The file cannot be read (%1).").arg(systemReason());
        return false;
    }
    if (!S_ISREG(status.st_mode)) {
        sReason = Texts::tr("This is no ordinary file.");
        return false;
    }
    m_bytes = quint64(status.st_size);
    quint8 header[16] = {};
    const qint64 got = readAt(header, sizeof(header), 0);
    if (got < 0) {
        sReason = Texts::tr("The file cannot be read (%1).").arg(systemReason());
        return false;
    }
    const bool little = header[0] == 'I' && header[1] == 'I';
    const bool big = header[0] == 'M' && header[1] == 'M';
    m_bigEndian = big;
    const quint64 version = number(header + 2, 2);
    m_bigTiff = version == 43;
    const bool wide = m_bigTiff && got == 16 && number(header + 4, 2) == 8;
    if (!(little || big) || !(wide || (version == 42 && got >= 8))) {
        sReason = got == 0 ? Texts::tr("The file is empty.")
                           : Texts::tr("This is no recording and no other TIFF file.");
        return false;
    }
    return true;
}

size_t CkTiffFile::headerFor(quint64 uiPageOffset, quint8* pHeader) const {
    const quint8 version = m_bigTiff ? 43 : 42;
    const int length = m_bigTiff ? 16 : 8;
    const int offsetAt = m_bigTiff ? 8 : 4;
    std::memset(pHeader, 0, 16);
    pHeader[0] = pHeader[1] = m_bigEndian ? 'M' : 'I';
    pHeader[m_bigEndian ? 3 : 2] = version;
    if (m_bigTiff) {
        pHeader[m_bigEndian ? 5 : 4] = 8;
    }
    for (int i = offsetAt; i < length; ++i) {
        const int shift = m_bigEndian ? length - 1 - i : i - offsetAt;
        pHeader[i] = quint8(uiPageOffset >> (8 * shift));
    }
    return size_t(length);
}

bool CkTiffFile::readCount(quint64 uiOffset, const quint8* pBytes, qint64 iBytes, quint64& uiCount,
                           QString& sReason) const {
    const int countBytes = m_bigTiff ? 8 : 2;
    if (iBytes < countBytes) {
        sReason = uiOffset >= m_bytes ? Texts::tr("The file ends before the page begins.")
                                      : Texts::tr("The file ends inside the page's directory.");
        return false;
    }
    uiCount = number(pBytes, countBytes);
    if (uiCount == 0 || uiCount > kMaximumEntries) {
        sReason = Texts::tr("There is no directory where the page should have one.");
        return false;
    }
    return true;
}

bool CkTiffFile::nextPage(quint64 uiOffset, quint64& uiNext, QString& sReason) const {
    const int countBytes = m_bigTiff ? 8 : 2;
    const int linkBytes = m_bigTiff ? 8 : 4;
    // The directory of a recorded page fits into one read.
    quint8 block[512];
    const qint64 got = readAt(block, sizeof(block), uiOffset);
    quint64 count = 0;
    if (!readCount(uiOffset, block, got, count, sReason)) {
        return false;
    }
    const quint64 linkAt = quint64(countBytes) + count * entryBytes();
    quint8 link[8] = {};
    if (linkAt + quint64(linkBytes) <= quint64(got)) {
        std::memcpy(link, block + linkAt, size_t(linkBytes));
    } else if (readAt(link, quint64(linkBytes), uiOffset + linkAt) != linkBytes) {
        sReason = Texts::tr("The file ends inside the page's directory.");
        return false;
    }
    uiNext = number(link, linkBytes);
    return true;
}

bool CkTiffFile::checkDirectory(quint64 uiPageOffset, QString& sReason) const {
    const int countBytes = m_bigTiff ? 8 : 2;
    quint8 head[8] = {};
    quint64 count = 0;
    if (!readCount(uiPageOffset, head, readAt(head, quint64(countBytes), uiPageOffset), count, sReason)) {
        return false;
    }
    std::vector<quint8> entries(size_t(count * entryBytes()));
    if (readAt(entries.data(), entries.size(), uiPageOffset + quint64(countBytes)) !=
        qint64(entries.size())) {
        sReason = Texts::tr("The file ends inside the page's directory.");
        return false;
    }
    // No overflow: each count is clamped to the limit, and there are few entries.
    quint64 bytes = 0;
    for (size_t at = 0; at < entries.size() && bytes <= SkReadLimits::kDirectoryBytes; at += entryBytes()) {
        const quint64 values = number(entries.data() + at + 4, m_bigTiff ? 8 : 4);
        const quint64 valueBytes = bytesOfType(number(entries.data() + at + 2, 2));
        bytes += std::min(values, SkReadLimits::kDirectoryBytes + 1) * valueBytes;
    }
    if (bytes > SkReadLimits::kDirectoryBytes) {
        sReason = Texts::tr("The page's directory asks for more than %1 MiB beside the samples.")
                      .arg(SkReadLimits::kDirectoryBytes >> 20U);
        return false;
    }
    return true;
}

/// Removes repetitions: the index ends with a cycle of this length, possibly repeated.
void CkTiffFile::cutCycle(quint64 uiLength) {
    size_t first = 0;
    while (m_pages[first] != m_pages[first + uiLength]) {
        ++first;
    }
    m_pages.resize(first + size_t(uiLength));
}

CkTiffFile::EkIndex CkTiffFile::readIndex(qint64 iMaximumPages, const ProgressFunction& progress,
                                          QString& sReason) {
    m_pages.clear();
    quint8 header[16] = {};
    readAt(header, sizeof(header), 0);
    quint64 offset = m_bigTiff ? number(header + 8, 8) : number(header + 4, 4);
    // Brent's cycle detection: each page is compared with the one at the last power of two. That needs no set
    // of all pages and walks through a cycle a few times at most.
    quint64 mark = 0;
    qint64 markedAt = 0;
    while (offset != 0) {
        const auto pages = qint64(m_pages.size());
        if (offset == mark) {
            m_pages.push_back(offset);
            cutCycle(quint64(pages - markedAt));
            sReason = Texts::tr("The file's pages point to each other in a circle.");
            return EkIndex::Damaged;
        }
        if (pages >= iMaximumPages) {
            sReason =
                Texts::tr("The file has more than %1 pages; the others are left out.").arg(iMaximumPages);
            return EkIndex::Damaged;
        }
        if ((pages & (pages - 1)) == 0) {
            mark = offset;
            markedAt = pages;
        }
        quint64 next = 0;
        if (!nextPage(offset, next, sReason)) {
            return EkIndex::Damaged;
        }
        m_pages.push_back(offset);
        offset = next;
        if (progress && ((pages + 1) % kPagesPerReport == 0 || offset == 0) &&
            !progress(pages + 1, offset == 0 ? 1.0 : std::min(1.0, double(offset) / double(m_bytes)))) {
            sReason = Texts::tr("Opening was cancelled.");
            return EkIndex::Cancelled;
        }
    }
    return EkIndex::Complete;
}
