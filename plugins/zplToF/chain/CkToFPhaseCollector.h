#pragma once

#include "chain/CkToFPicture.h"
#include "pic/CkToFPicAPI.h"
#include "zuCore/CkImageMetadata.h"

/// Gathers the images of a set (phases or sections) into one picture, stacked in the order of their index.
///
/// A value without knowledge of chains; one thread at a time. Nothing is allocated between prepare and clear.
class CkToFPhaseCollector {
public:
    /// Angle of an image that has not come yet.
    static constexpr qint32 missingAngle = -1000;
    /// Neither picture nor list of a set may take more than this together.
    static constexpr quint64 maximumBytes = 1ULL << 30U;

    enum class EkPrepared { Ready, NothingToGather, TooLarge };

    /// Where an image belongs.
    struct SkPlace {
        qint64 count; ///< images of the set; may be absurd
        qint64 index; ///< position in it; may be outside

        /// From metadata: the sections of hybrid input, of which a reference section does not count, or the
        /// phase sequence.
        static SkPlace of(const CkImageMetadata& metadata, bool bHybrid);
    };

    /// Makes room for sets of iCount images of a format, all missing. TooLarge when that needs more than
    /// maximumBytes or the memory cannot be had.
    EkPrepared prepare(const SkPicBufInfo& image, qint64 iCount);
    /// Gives the memory back and forgets all angles.
    void clear();

    bool hasBuffer() const { return !m_buffer.isEmpty(); }
    const SkPicBufInfo& bufferInfo() const { return m_buffer.picBuf(); }

    /// Takes an image into the set. An image of index 0 begins a new set; another count keeps the images that
    /// fit. True when the set is complete with this image. An image that is outside the set or does not fit
    /// the buffer leaves the pixels as they are.
    bool add(const SkPicBuf& image, SkPlace place, qint32 iAngle);

    /// The rows of the set that add answered true for. An alias, valid until the next call.
    const SkPicBuf& set() const { return m_set; }
    /// One entry per image of the set.
    const CkToFPicAPI::AngleList& angles() const { return m_angles; }

private:
    CkToFPicture m_buffer;
    SkPicBuf m_set;
    quint64 m_uiCapacity = 0; ///< images of the prepared format
    CkToFPicAPI::AngleList m_angles;
};
