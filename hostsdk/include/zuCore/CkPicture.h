#pragma once

#include "zuCore/CkPicBufAPI.h"

#include <utility>

/// Owns one reference to a picture and releases it when destroyed. Movable, not copyable; one thread at a
/// time.
class CkPicture {
public:
    CkPicture() = default; ///< Without pixels.
    /// Takes ownership of the picture's reference: no alias of it may be freed any more.
    explicit CkPicture(const SkPicBuf& picBuf) : m_picBuf(picBuf) {}
    ~CkPicture() { reset(); }
    /// Moves the reference; other is empty afterwards.
    CkPicture(CkPicture&& other) noexcept : m_picBuf(other.take()) {}
    /// Releases the picture held and moves the reference; other is empty afterwards.
    CkPicture& operator=(CkPicture&& other) noexcept {
        if (this != &other) {
            reset();
            m_picBuf = other.take();
        }
        return *this;
    }
    CkPicture(const CkPicture&) = delete;
    CkPicture& operator=(const CkPicture&) = delete;

    /// Allocates a picture on the heap, replacing the one held; lineSize 0: packed rows, rounded up to
    /// linePadding. Zeroed unless bClear is false. False, and empty, when the descriptor is impossible or
    /// memory allocation fails.
    bool allocate(const SkPicBufInfo& info, bool bClear = true) {
        return CkPicBufAPI::AllocPicBufFromHeap(
            m_picBuf, info.width, info.height, info.channels, info.dataType, info.linePadding, info.lineSize,
            info.bitsPerChannel, info.storageFormat, info.colorFilterArray, info.layoutFlag, !bClear, 0);
    }

    bool isEmpty() const { return m_picBuf.data == nullptr; } ///< Without pixels.
    SkPicBuf& picBuf() { return m_picBuf; }                   ///< Owned by this object.
    const SkPicBuf& picBuf() const { return m_picBuf; }       ///< Owned by this object.

    /// Transfers the reference to the caller; empty afterwards.
    SkPicBuf take() { return std::exchange(m_picBuf, SkPicBuf()); }
    /// Releases the reference; empty afterwards, including the descriptor.
    void reset() { CkPicBufAPI::FreePicBuf(m_picBuf, true); }

private:
    SkPicBuf m_picBuf;
};
