#include "host/recording/CkFrameFetcher.h"

#include "host/recording/IkFrameFile.h"
#include "host/recording/SkDepthScale.h"
#include "zuCore/CkImageData.h"

CkFrameFetcher::SkFetched CkFrameFetcher::fetch(const IkFrameFile& file, qint64 iFrame,
                                                const SkDepthScale& scale) {
    SkFetched fetched;
    QString error;
    fetched.frame = file.read(iFrame, &error);
    fetched.message = error.isEmpty() ? m_errors.endOfRun() : m_errors.add(error, CkPageErrors::Clock::now());
    if (fetched.frame == nullptr) {
        return fetched;
    }
    fetched.fileInfo = fetched.frame->picBuf();
    fetched.fileMetadata = fetched.frame->metadata();
    if (std::unique_ptr<CkImageData> depth = scale.scaled(*fetched.frame)) {
        fetched.frame = std::move(depth);
    }
    return fetched;
}
