#include "host/picture/CkPicMemory.h"

#include <cstdint>
#include <cstdlib>
#include <new>
#include <unistd.h>
#include <utility>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#endif

namespace {

constexpr size_t kAlignment = 64; // a cache line

/// Linux overcommits: an allocation beyond the physical memory succeeds, and the process is killed when it
/// touches the pages. Such pictures are refused instead.
size_t physicalMemory() {
    static const size_t bytes = [] {
        const long pages = sysconf(_SC_PHYS_PAGES);
        const long pageBytes = sysconf(_SC_PAGESIZE);
        return pages > 0 && pageBytes > 0 ? size_t(pages) * size_t(pageBytes) : size_t(PTRDIFF_MAX);
    }();
    return bytes;
}

} // namespace

CkPicMemory* CkPicMemory::create(size_t uiBytes, bool bClear) noexcept {
    const size_t overhead = sizeof(CkPicMemory) + kAlignment - 1;
    if (uiBytes == 0 || uiBytes > size_t(PTRDIFF_MAX) - overhead || uiBytes > physicalMemory()) {
        return nullptr;
    }
    // calloc takes fresh zero pages from the system, so a large picture costs nothing until it is written.
    void* const block = bClear ? std::calloc(1, uiBytes + overhead) : std::malloc(uiBytes + overhead);
    if (block == nullptr) {
        return nullptr;
    }
    const auto afterHeader = reinterpret_cast<std::uintptr_t>(block) + sizeof(CkPicMemory);
    const auto aligned = (afterHeader + kAlignment - 1) / kAlignment * kAlignment;
    auto* const pixels = static_cast<quint8*>(block) + (aligned - reinterpret_cast<std::uintptr_t>(block));
#if defined(__SANITIZE_ADDRESS__)
    // The slack that alignment leaves would hide writes past the last row.
    ASAN_POISON_MEMORY_REGION(pixels + uiBytes, overhead - sizeof(CkPicMemory) - (aligned - afterHeader));
#endif
    return new (block) CkPicMemory(pixels, uiBytes);
}

void CkPicMemory::destroy(CkPicMemory* pMemory) noexcept {
    pMemory->~CkPicMemory();
    std::free(pMemory);
}

void CkPicMemory::release() noexcept {
    if (m_references.fetch_sub(1, std::memory_order_acq_rel) != 1) {
        return;
    }
    // Moved out before the call: as soon as the pool has the memory, another thread may reuse it and set
    // m_pool.
    const std::shared_ptr<IkPicMemoryPool> pool = std::move(m_pool);
    if (pool) {
        pool->reclaim(this);
    } else {
        destroy(this);
    }
}

void CkPicMemory::reuse(std::shared_ptr<IkPicMemoryPool> pPool) noexcept {
    m_references.store(1, std::memory_order_relaxed);
    m_pool = std::move(pPool);
}
