#pragma once

#include "zuCore/CkImageMetadata.h"
#include "zuCore/CkPicture.h"
#include "zuCore/IkChainData.h"

#include <QObject>

/// One frame: a picture with its metadata. Owns a reference to the picture and releases it when deleted. May
/// be passed between threads, but only one thread may use it at a time; pixels shared with other frames are
/// read-only.
class ZUCORE_EXPORT CkImageData : public QObject, public IkChainData {
    Q_OBJECT

public:
    explicit CkImageData(QObject* pParent = nullptr); ///< Without a picture.
    ~CkImageData() override;

    const SkPicBuf& picBuf() const { return m_picture.picBuf(); } ///< Owned by this object.
    /// To write pixels; only while no other frame shares them.
    SkPicBuf& picBuf() { return m_picture.picBuf(); }

    /// Takes ownership of the picture's reference; the previous one is released.
    void setPicBuf(const SkPicBuf& picBuf);

    const CkImageMetadata& metadata() const { return m_metadata; }               ///< Of this frame.
    void setMetadata(const CkImageMetadata& metadata) { m_metadata = metadata; } ///< Stores a copy.

    /// Identifier of the frame within its source: the low 31 bits of the frame number, never negative.
    qint32 frameId() const { return qint32(picBuf().additionalData.frameNumber & 0x7fffffffU); }

    /// A new frame with the same pixels (copied when they have no owner), owned by the caller; null when
    /// memory allocation fails.
    CkImageData* share() const override;

private:
    CkPicture m_picture;
    CkImageMetadata m_metadata;
};
