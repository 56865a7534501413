#pragma once

#include "zuCore/CkPicture.h"

/// Subtracts a reference section from the sections that follow it. One thread at a time.
class CkToFSectionReference {
public:
    /// Makes room for frames of a format; the reference starts zeroed. False when the memory cannot be had;
    /// then there is no buffer at all.
    bool prepare(const SkPicBufInfo& frame);
    void clear();

    bool hasBuffers() const { return !m_difference.isEmpty(); }

    /// Keeps a frame as the reference. False, and nothing happens, without buffers or for a frame of another
    /// format.
    bool setReference(const SkPicBuf& frame);

    /// The frame less the reference, saturated; an alias that is valid until the next call. Null without
    /// buffers or for a frame of another format.
    const SkPicBuf* difference(const SkPicBuf& frame);

private:
    CkPicture m_reference;
    CkPicture m_difference;
};
