#pragma once

#include "plugins/zplToF/pic/CkToFPicAPI.h"
#include "plugins/zplToF/transform/EkFrameRefusal.h"
#include "zuCore/CkImageMetadata.h"
#include "zuCore/CkPicture.h"

/// Gathers the images of a set (phases or sections) into one picture, stacked in the order of their index.
///
/// A value without knowledge of chains; one thread at a time. Between prepare and clear nothing is allocated
/// for sets that fit.
class CkToFPhaseCollector {
public:
    using EkRefusal = ToFFrames::EkRefusal;

    /// Angle of an image that has not come yet.
    static constexpr qint32 missingAngle = -1000;
    /// The images of a set may take this together, each counted as minimumImageBytes at least, which bounds
    /// the list of angles.
    static constexpr quint64 maximumBytes = 1ULL << 30U;
    static constexpr quint64 minimumImageBytes = 64;

    /// Where an image belongs.
    struct SkPlace {
        qint64 count; ///< images of the set; may be absurd
        qint64 index; ///< position in it; may be outside

        /// From metadata: the sections of hybrid input, of which a reference section does not count, or the
        /// phase sequence.
        static SkPlace of(const CkImageMetadata& metadata, bool bHybrid);
    };

    /// Makes room for sets of iCount images of a format, all missing. Otherwise there is no buffer:
    /// SetTooLarge or NoMemory, or None when there is nothing to gather.
    EkRefusal prepare(const SkPicBufInfo& image, qint64 iCount);
    /// Gives the memory back and forgets all angles.
    void clear();

    bool hasBuffer() const { return !m_buffer.isEmpty(); }
    const SkPicBufInfo& bufferInfo() const { return m_buffer.picBuf(); }

    /// What became of an image.
    struct SkAdded {
        bool complete = false; ///< the set is, with this image
        EkRefusal refusal = EkRefusal::None;
    };

    /// Takes an image into the set. The list of angles is resized to the images of the set, also without a
    /// buffer; an image of index 0 begins a new set. An image that is refused leaves pixels and angles of the
    /// others as they are: OutsideSet, SetTooLarge, or SetDiffers when it does not fit the buffer.
    SkAdded add(const SkPicBuf& image, SkPlace place, qint32 iAngle);

    /// The rows of the set that was complete last. An alias, valid until the next call.
    const SkPicBuf& set() const { return m_set; }
    /// One entry per image of the set.
    const CkToFPicAPI::AngleList& angles() const { return m_angles; }

private:
    static bool isTooLarge(const SkPicBufInfo& image, qint64 iCount);
    bool store(const SkPicBuf& image, SkPlace place);
    void describeSet(const SkPicBuf& image);

    CkPicture m_buffer;
    SkPicBuf m_set;
    CkToFPicAPI::AngleList m_angles;
};
