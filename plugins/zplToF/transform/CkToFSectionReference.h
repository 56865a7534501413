#pragma once

#include "zuCore/CkPicture.h"

/// Subtracts a reference section from the sections that follow it. One thread at a time.
class CkToFSectionReference {
public:
    /// Allocates the buffers for frames of a format; the reference is zero. False, and no buffers, when
    /// memory runs out.
    bool prepare(const SkPicBufInfo& frame);
    void clear();

    bool hasBuffers() const { return !m_difference.isEmpty(); }

    /// Copies a frame as the reference. False, and no change, without buffers or for a frame of another
    /// format.
    bool setReference(const SkPicBuf& frame);

    /// The frame minus the reference, saturated; an alias that is valid until the next call. Null without
    /// buffers or for a frame of another format.
    const SkPicBuf* difference(const SkPicBuf& frame);

private:
    CkPicture m_reference;
    CkPicture m_difference;
};
