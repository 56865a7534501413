#pragma once

#include "zuCore/SkPicBuf.h"

#include <atomic>
#include <cstddef>
#include <memory>

class CkPicMemory;

/// The pool to which the memory of a picture returns when its last reference is released. Any thread.
class IkPicMemoryPool {
public:
    virtual ~IkPicMemoryPool() = default;
    virtual void reclaim(CkPicMemory* pMemory) = 0;
};

/// Reference-counted pixel memory. Header and pixels share one allocation. References may be added and
/// released on any thread.
class CkPicMemory {
public:
    /// Memory with one reference; pixels aligned to 64 bytes, zeroed when bClear. Null when memory is short.
    static CkPicMemory* create(size_t uiBytes, bool bClear) noexcept;
    static void destroy(CkPicMemory* pMemory) noexcept;

    CkPicMemory(const CkPicMemory&) = delete;
    CkPicMemory& operator=(const CkPicMemory&) = delete;

    quint8* pixels() { return m_pixels; }
    size_t bytes() const { return m_bytes; }

    void addReference() noexcept { m_references.fetch_add(1, std::memory_order_relaxed); }
    /// Releases a reference; the last one returns the memory to its pool, or frees it.
    void release() noexcept;

    /// Puts memory without references back into use: it has one reference then, and returns to pPool after
    /// the last one.
    void reuse(std::shared_ptr<IkPicMemoryPool> pPool) noexcept;

private:
    CkPicMemory(quint8* pPixels, size_t uiBytes) : m_pixels(pPixels), m_bytes(uiBytes) {}
    ~CkPicMemory() = default;

    quint8* const m_pixels;
    const size_t m_bytes;
    std::atomic<int> m_references{1};
    std::shared_ptr<IkPicMemoryPool> m_pool;
};
