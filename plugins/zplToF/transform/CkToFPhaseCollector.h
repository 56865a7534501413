#pragma once

#include "plugins/zplToF/pic/CkToFPicAPI.h"
#include "plugins/zplToF/transform/EkFrameRefusal.h"
#include "zuCore/CkPicture.h"
#include "zuCore/SkToFSetPosition.h"

/// Gathers the images of a set (phases or sections) into one picture, stacked in the order of their index.
///
/// One thread at a time. Between prepare and clear nothing is allocated for sets that fit.
class CkToFPhaseCollector {
public:
    /// Angle of an image that has not arrived yet.
    static constexpr qint32 kMissingAngle = -1000;
    /// Limit for the images of a set together. Each counts as kMinimumImageBytes at least, which limits the
    /// length of the list of angles.
    static constexpr quint64 kMaximumBytes = 1ULL << 30U;
    static constexpr quint64 kMinimumImageBytes = 64;

    /// Allocates the buffer for sets of iCount images of a format, all missing. There is no buffer after
    /// SetTooLarge or NoMemory, or after None when there is nothing to gather.
    EkFrameRefusal prepare(const SkPicBufInfo& image, qint64 iCount);
    /// Frees the buffer and clears the list of angles.
    void clear();

    bool hasBuffer() const { return !m_buffer.isEmpty(); }
    const SkPicBufInfo& bufferInfo() const { return m_buffer.picBuf(); }

    /// The outcome of adding an image.
    struct SkAdded {
        bool complete = false; ///< this image completes the set
        EkFrameRefusal refusal = EkFrameRefusal::None;
    };

    /// Adds an image to the set. The list of angles is resized to the images of the set, also without a
    /// buffer; an image of index 0 begins a new set. A refused image leaves pixels and angles of the others
    /// unchanged: OutsideSet, SetTooLarge, or SetDiffers when it does not fit the buffer.
    SkAdded add(const SkPicBuf& image, const SkToFSetPosition& position, qint32 iAngle);

    /// The set that was completed last. An alias, valid until the next call.
    const SkPicBuf& set() const { return m_set; }
    /// One entry per image of the set.
    const CkToFPicAPI::AngleList& angles() const { return m_angles; }

private:
    static bool isTooLarge(const SkPicBufInfo& image, qint64 iCount);
    bool store(const SkPicBuf& image, const SkToFSetPosition& position);
    void describeSet(const SkPicBuf& image);

    CkPicture m_buffer;
    SkPicBuf m_set;
    CkToFPicAPI::AngleList m_angles;
};
