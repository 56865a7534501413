#pragma once

#include "zuCore/SkPicBuf.h"

#include <memory>

/// Picture memory of a chain, divided into sub-pools of equally sized pictures, one per owner (a block). A
/// picture returns to its sub-pool automatically when its last reference is released; it may outlive the
/// sub-pool and the pool. All functions may be called from any thread.
class ZUCORE_EXPORT CkMemoryPool {
public:
    CkMemoryPool();
    ~CkMemoryPool();
    CkMemoryPool(const CkMemoryPool&) = delete;
    CkMemoryPool& operator=(const CkMemoryPool&) = delete;

    /// Creates a sub-pool of iCount zeroed pictures of the descriptor's byte size for an owner, replacing a
    /// previous one. False when the size is 0 or overflows (no sub-pool), or when memory allocation fails (an
    /// empty sub-pool).
    bool reserve(const void* pOwner, const SkPicBufInfo& info, int iCount);

    /// Removes the owner's sub-pool; pictures still held stay valid until they are freed.
    void release(const void* pOwner);
    void releaseAll(); ///< The same for every owner.

    /// Takes a picture with this descriptor from the owner's sub-pool. False when the owner has no sub-pool,
    /// when no picture is free, or when the descriptor needs a byte size other than the sub-pool's. Unless
    /// bClear, pixels are undefined (those of the last use). To be freed with CkPicBufAPI::FreePicBuf.
    bool acquire(const void* pOwner, const SkPicBufInfo& info, SkPicBuf& picBuf, bool bClear);

    int capacity(const void* pOwner) const;            ///< pictures, free and in use; 0 without a sub-pool
    int freeCount(const void* pOwner) const;           ///< free pictures
    quint64 bytesPerPicture(const void* pOwner) const; ///< 0 without a sub-pool

    /// How often acquire failed since the sub-pool was created.
    struct SkRefusals {
        quint64 exhausted = 0; ///< no picture was free
        quint64 misfits = 0;   ///< the descriptor needs a byte size other than the sub-pool's
    };
    SkRefusals refusals(const void* pOwner) const; ///< zeros without a sub-pool

private:
    class CkPrivate;
    std::unique_ptr<CkPrivate> m_d;
};
