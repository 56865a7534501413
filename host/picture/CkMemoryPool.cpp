#include "zuCore/CkMemoryPool.h"

#include "host/picture/CkPicMemory.h"
#include "zuCore/CkPicBufAPI.h"

#include <cstring>
#include <mutex>
#include <new>
#include <unordered_map>
#include <vector>

namespace {

/// The sub-pool of one owner: its free list and counters. Pictures in use share its ownership, so that they
/// can be returned, or freed, after the pool itself was destroyed.
class CkOwnerPool final : public IkPicMemoryPool, public std::enable_shared_from_this<CkOwnerPool> {
public:
    explicit CkOwnerPool(size_t uiBytes) : m_uiBytes(uiBytes) {}
    ~CkOwnerPool() override { freeAll(); }
    CkOwnerPool(const CkOwnerPool&) = delete;
    CkOwnerPool& operator=(const CkOwnerPool&) = delete;

    bool fill(int iCount) {
        m_free.reserve(size_t(iCount)); // reclaim must not allocate
        for (int i = 0; i < iCount; ++i) {
            CkPicMemory* const memory = CkPicMemory::create(m_uiBytes, true);
            if (memory == nullptr) {
                freeAll();
                return false;
            }
            m_free.push_back(memory);
        }
        m_iCapacity = iCount;
        return true;
    }

    /// From now on, returned pictures are freed instead of being reused.
    void retire() {
        const std::lock_guard lock(m_mutex);
        m_bRetired = true;
        freeAll();
    }

    /// Null, and counted, when no picture is free.
    CkPicMemory* acquire() {
        CkPicMemory* memory = nullptr;
        {
            const std::lock_guard lock(m_mutex);
            if (m_free.empty()) {
                ++m_refusals.exhausted;
                return nullptr;
            }
            memory = m_free.back();
            m_free.pop_back();
        }
        memory->reuse(shared_from_this());
        return memory;
    }

    void reclaim(CkPicMemory* pMemory) override {
        const std::lock_guard lock(m_mutex);
        if (m_bRetired) {
            CkPicMemory::destroy(pMemory);
        } else {
            m_free.push_back(pMemory);
        }
    }

    void countMisfit() {
        const std::lock_guard lock(m_mutex);
        ++m_refusals.misfits;
    }
    CkMemoryPool::SkRefusals refusals() const {
        const std::lock_guard lock(m_mutex);
        return m_refusals;
    }

    size_t bytes() const { return m_uiBytes; }
    int capacity() const { return m_iCapacity; }
    int freeCount() const {
        const std::lock_guard lock(m_mutex);
        return int(m_free.size());
    }

private:
    void freeAll() {
        for (CkPicMemory* memory : m_free) {
            CkPicMemory::destroy(memory);
        }
        m_free.clear();
    }

    mutable std::mutex m_mutex;
    std::vector<CkPicMemory*> m_free;
    CkMemoryPool::SkRefusals m_refusals;
    const size_t m_uiBytes;
    int m_iCapacity = 0;
    bool m_bRetired = false;
};

} // namespace

class CkMemoryPool::CkPrivate {
public:
    std::shared_ptr<CkOwnerPool> ownerPool(const void* pOwner) const {
        const std::lock_guard lock(m_mutex);
        const auto found = m_pools.find(pOwner);
        return found == m_pools.end() ? nullptr : found->second;
    }

    mutable std::mutex m_mutex;
    std::unordered_map<const void*, std::shared_ptr<CkOwnerPool>> m_pools;
};

CkMemoryPool::CkMemoryPool() : m_d(std::make_unique<CkPrivate>()) {}

CkMemoryPool::~CkMemoryPool() {
    releaseAll();
}

bool CkMemoryPool::reserve(const void* pOwner, const SkPicBufInfo& info, int iCount) {
    release(pOwner);
    const size_t bytes = CkPicBufAPI::byteSize(info);
    if (bytes == 0 || iCount < 0) {
        return false;
    }
    try {
        auto pool = std::make_shared<CkOwnerPool>(bytes);
        const bool filled = pool->fill(iCount);
        // Stored even when it could not be filled: it counts the requests that it refuses.
        const std::lock_guard lock(m_d->m_mutex);
        m_d->m_pools[pOwner] = std::move(pool);
        return filled;
    } catch (const std::exception&) {
        return false;
    }
}

void CkMemoryPool::release(const void* pOwner) {
    std::shared_ptr<CkOwnerPool> pool;
    {
        const std::lock_guard lock(m_d->m_mutex);
        const auto found = m_d->m_pools.find(pOwner);
        if (found == m_d->m_pools.end()) {
            return;
        }
        pool = std::move(found->second);
        m_d->m_pools.erase(found);
    }
    pool->retire();
}

void CkMemoryPool::releaseAll() {
    std::unordered_map<const void*, std::shared_ptr<CkOwnerPool>> pools;
    {
        const std::lock_guard lock(m_d->m_mutex);
        pools.swap(m_d->m_pools);
    }
    for (const auto& [owner, pool] : pools) {
        pool->retire();
    }
}

bool CkMemoryPool::acquire(const void* pOwner, const SkPicBufInfo& info, SkPicBuf& picBuf, bool bClear) {
    // A copy: info may be the descriptor inside picBuf, which FreePicBuf resets.
    const SkPicBufInfo wanted = info;
    CkPicBufAPI::FreePicBuf(picBuf, true);
    const std::shared_ptr<CkOwnerPool> owned = m_d->ownerPool(pOwner);
    const size_t bytes = CkPicBufAPI::byteSize(wanted);
    if (!owned) {
        return false;
    }
    if (bytes == 0 || bytes != owned->bytes()) {
        owned->countMisfit();
        return false;
    }
    CkPicMemory* const memory = owned->acquire();
    if (memory == nullptr) {
        return false;
    }
    if (bClear) {
        std::memset(memory->pixels(), 0, memory->bytes());
    }
    picBuf = SkPicBuf();
    static_cast<SkPicBufInfo&>(picBuf) = wanted;
    picBuf.data = memory->pixels();
    picBuf.memory = memory;
    return true;
}

int CkMemoryPool::capacity(const void* pOwner) const {
    const auto owned = m_d->ownerPool(pOwner);
    return owned ? owned->capacity() : 0;
}

int CkMemoryPool::freeCount(const void* pOwner) const {
    const auto owned = m_d->ownerPool(pOwner);
    return owned ? owned->freeCount() : 0;
}

quint64 CkMemoryPool::bytesPerPicture(const void* pOwner) const {
    const auto owned = m_d->ownerPool(pOwner);
    return owned ? owned->bytes() : 0;
}

CkMemoryPool::SkRefusals CkMemoryPool::refusals(const void* pOwner) const {
    const auto owned = m_d->ownerPool(pOwner);
    return owned ? owned->refusals() : SkRefusals();
}
