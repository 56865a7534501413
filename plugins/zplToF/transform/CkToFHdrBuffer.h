#pragma once

#include "zuCore/CkPicture.h"

/// Work buffer for merging the exposure sections of a hybrid picture. One thread at a time; nothing is
/// allocated per frame.
class CkToFHdrBuffer {
public:
    /// Allocates a 32-bit picture as high as one section. sections: format of the picture that holds all
    /// iPhasesCount of them; a count below 2 leaves the height as it is. False: there is no buffer.
    bool prepare(const SkPicBufInfo& sections, qint32 iPhasesCount);
    void clear();

    bool isEmpty() const { return m_picture.isEmpty(); }
    const SkPicBufInfo& info() const { return m_info; }
    /// The buffer could not be allocated.
    bool lacksMemory() const { return m_lacksMemory; }

    /// Merges the sections. The result is owned by this object and may be modified until the next call; null
    /// when there is no buffer or nothing to merge.
    SkPicBuf* merge(const SkPicBuf& sections);

private:
    CkPicture m_picture;
    SkPicBufInfo m_info; ///< as prepared
    bool m_lacksMemory = false;
};
