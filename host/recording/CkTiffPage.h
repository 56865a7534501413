#pragma once

#include "host/recording/SkFrameDescription.h"
#include "host/recording/SkReadLimits.h"

#include <memory>

class CkTiffClient;
class CkTiffFile;
struct SkTiffParts;

/// One page of a TIFF file, opened directly at its offset. One thread at a time; different pages of a file
/// may be read on different threads.
class CkTiffPage {
public:
    CkTiffPage(const CkTiffFile& file, qint64 iPage, const SkReadLimits& limits);
    ~CkTiffPage();
    CkTiffPage(const CkTiffPage&) = delete;
    CkTiffPage& operator=(const CkTiffPage&) = delete;

    enum class EkResult { Complete, Partial, Failed };

    /// Format and text of the page. A page of another program has no metadata but its number. False, with
    /// sReason, when the page cannot be read, exceeds the limits or has samples of an unsupported form.
    bool describe(SkFrameDescription& description, QString& sReason);

    /// Reads the samples into a picture of the format from describe(), which must be called first.
    /// Partial: what could not be read is 0; sReason says why.
    EkResult readSamples(SkPicBuf& picBuf, QString& sReason);

private:
    struct SkPart;

    bool checkFormat(SkFrameDescription& description, QString& sReason);
    bool checkSize(const SkPicBufInfo& info, QString& sReason);
    bool readText(SkFrameDescription& description, bool& bOurs, QString& sReason);
    bool readPart(quint32 uiPart, void* pBytes, qint64 iBytes, bool& bSome);
    EkResult readStrips(const SkTiffParts& parts, SkPicBuf& picBuf);
    EkResult readTiles(const SkTiffParts& parts, SkPicBuf& picBuf);
    QString reason(const QString& sFallback) const;

    std::unique_ptr<CkTiffClient> m_client;
    SkReadLimits m_limits;
    qint64 m_page;
    quint64 m_limit = 0; ///< bytes that the samples of this page may take
    bool m_foreignRgb = false;
};
