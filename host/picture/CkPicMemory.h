#pragma once

#include "zuCore/SkPicBuf.h"

#include <atomic>
#include <cstddef>
#include <memory>

class CkPicMemory;

/// Takes the memory of a pooled picture back when its last reference is released. Any thread.
class IkPicMemoryShelf {
public:
    virtual ~IkPicMemoryShelf() = default;
    virtual void takeBack(CkPicMemory* pMemory) = 0;
};

/// Counted pixels. Header and pixels are one allocation, so that a picture costs one call of the allocator.
/// Counting may happen on any thread.
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
    /// Gives one reference back; the last one sends the memory to its shelf, or frees it.
    void release() noexcept;

    /// Takes memory without holders into use again: one reference, going back to pShelf.
    void handOut(std::shared_ptr<IkPicMemoryShelf> pShelf) noexcept;

private:
    CkPicMemory(quint8* pPixels, size_t uiBytes) : m_pixels(pPixels), m_bytes(uiBytes) {}
    ~CkPicMemory() = default;

    quint8* const m_pixels;
    const size_t m_bytes;
    std::atomic<int> m_references{1};
    std::shared_ptr<IkPicMemoryShelf> m_shelf;
};
