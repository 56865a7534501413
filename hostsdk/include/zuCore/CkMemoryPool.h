#pragma once

#include "zuCore/SkPicBuf.h"

#include <memory>

/// Picture memory of a chain: one shelf of equally sized pictures per owner (a block). A picture returns to
/// its shelf by itself when its last holder frees it, also after the shelf or the pool was destroyed.
/// All functions may be called from any thread.
class ZUCORE_EXPORT CkMemoryPool {
public:
    CkMemoryPool();
    ~CkMemoryPool();
    CkMemoryPool(const CkMemoryPool&) = delete;
    CkMemoryPool& operator=(const CkMemoryPool&) = delete;

    /// Makes a shelf of iCount zeroed pictures of the descriptor's byte size for an owner, in place of the
    /// one it had. False when the size is 0 or overflows (no shelf), or memory is short (an empty shelf).
    bool reserve(const void* pOwner, const SkPicBufInfo& info, int iCount);

    /// Takes the owner's shelf away; pictures still held stay valid until they are freed.
    void release(const void* pOwner);
    void releaseAll(); ///< The same for every owner.

    /// Hands out a picture of the descriptor. False when the owner has no shelf, when none is free, or when
    /// the descriptor needs another byte size than the shelf holds. Pixels are what the last user left
    /// unless bClear. Freed with CkPicBufAPI::FreePicBuf.
    bool acquire(const void* pOwner, const SkPicBufInfo& info, SkPicBuf& picBuf, bool bClear);

    int capacity(const void* pOwner) const;            ///< pictures on the shelf and out; 0 without a shelf
    int freeCount(const void* pOwner) const;           ///< pictures on the shelf now
    quint64 bytesPerPicture(const void* pOwner) const; ///< 0 without a shelf

    /// How often acquire was refused since the shelf was made.
    struct SkRefusals {
        quint64 exhausted = 0; ///< no picture was free
        quint64 misfits = 0;   ///< the descriptor needs another byte size than the shelf holds
    };
    SkRefusals refusals(const void* pOwner) const; ///< zeros without a shelf

private:
    class CkPrivate;
    std::unique_ptr<CkPrivate> m_d;
};
