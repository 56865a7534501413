#pragma once

#include "tests/support/TestFrames.h"
#include "zuCore/CkImageSource.h"

#include <memory>

/// A source that delivers the frames the test pushes.
class PushSource : public CkImageSource {
public:
    SkPicBufInfo info;
    CkImageMetadata metadata;
    QList<void*> handles;

    bool sourceImageInfo(SkPicBufInfo& out, CkImageMetadata* pMetadata) const override {
        out = info;
        if (pMetadata != nullptr) {
            *pMetadata = metadata;
        }
        return info.width != 0;
    }
    QList<void*> cameraHandles() const override { return handles; }
    QString title() const override { return QStringLiteral("Push"); }

    bool push(std::unique_ptr<CkImageData> frame) { return deliver(frame.release()); }
    /// A zeroed frame of the source's format.
    bool push(quint64 uiFrameNumber) { return push(makeFrame(uiFrameNumber)); }

    std::unique_ptr<CkImageData> makeFrame(quint64 uiFrameNumber) const {
        return ::makeFrame(info, metadata, uiFrameNumber);
    }

    void setFormat(quint32 uiWidth, quint32 uiHeight, quint32 uiChannels, EkImageDataType dataType,
                   quint32 uiBits) {
        info.width = uiWidth;
        info.height = uiHeight;
        info.channels = uiChannels;
        info.dataType = dataType;
        info.bitsPerChannel = uiBits;
        info.storageFormat = EkDataStorageFormat::Interleaved;
        info.lineSize = uiWidth * uiChannels * sampleBytes(dataType);
    }
};
