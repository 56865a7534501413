#pragma once

#include "host/recording/CkPageErrors.h"
#include "zuCore/CkImageMetadata.h"
#include "zuCore/SkPicBuf.h"

#include <memory>

class CkImageData;
class IkFrameFile;
struct SkDepthScale;

/// Reads consecutive frames, scales them to depths if requested, and condenses error messages. One thread.
class CkFrameFetcher {
public:
    struct SkFetched {
        std::unique_ptr<CkImageData> frame; ///< null when it cannot be read at all
        SkPicBufInfo fileInfo;              ///< of the frame as stored in the file
        CkImageMetadata fileMetadata;
        QString message; ///< to be shown, or empty
    };

    SkFetched fetch(const IkFrameFile& file, qint64 iFrame, const SkDepthScale& scale);
    /// After the last frame: a message that was delayed, or empty.
    QString pendingMessage() { return m_errors.endOfRun(); }

private:
    CkPageErrors m_errors;
};
