#pragma once

#include "zuCore/SkPicBuf.h"

#include <memory>

/// Picture memory of a chain: one shelf of equally sized pictures per owner (a block). A picture returns to
/// its shelf automatically when its last reference is freed; it may outlive the shelf and the pool. All
/// functions may be called from any thread.
class ZUCORE_EXPORT CkMemoryPool {
public:
    CkMemoryPool();
    ~CkMemoryPool();
    CkMemoryPool(const CkMemoryPool&) = delete;
    CkMemoryPool& operator=(const CkMemoryPool&) = delete;

    /// Creates a shelf of iCount zeroed pictures of the descriptor's byte size for an owner, replacing a
    /// previous one. False when the size is 0 or overflows (no shelf), or when memory allocation fails (an
    /// empty shelf).
    bool reserve(const void* pOwner, const SkPicBufInfo& info, int iCount);

    /// Removes the owner's shelf; pictures still held stay valid until they are freed.
    void release(const void* pOwner);
    void releaseAll(); ///< The same for every owner.

    /// Takes a picture with this descriptor from the owner's shelf. False when the owner has no shelf, when
    /// none is free, or when the descriptor needs another byte size than that of the shelf. Unless bClear,
    /// pixels are undefined (those of the last use). To be freed with CkPicBufAPI::FreePicBuf.
    bool acquire(const void* pOwner, const SkPicBufInfo& info, SkPicBuf& picBuf, bool bClear);

    int capacity(const void* pOwner) const;            ///< free ones and those in use; 0 without a shelf
    int freeCount(const void* pOwner) const;           ///< free ones
    quint64 bytesPerPicture(const void* pOwner) const; ///< 0 without a shelf

    /// How often acquire was refused since the shelf was created.
    struct SkRefusals {
        quint64 exhausted = 0; ///< no picture was free
        quint64 misfits = 0;   ///< the descriptor needs another byte size than that of the shelf
    };
    SkRefusals refusals(const void* pOwner) const; ///< zeros without a shelf

private:
    class CkPrivate;
    std::unique_ptr<CkPrivate> m_d;
};
