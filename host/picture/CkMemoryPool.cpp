#include "zuCore/CkMemoryPool.h"

#include "host/picture/CkPicMemory.h"
#include "zuCore/CkPicBufAPI.h"

#include <cstring>
#include <mutex>
#include <new>
#include <unordered_map>
#include <vector>

namespace {

/// The pictures of one owner. Lives until its pool has released it and every picture is back.
class CkShelf final : public IkPicMemoryShelf, public std::enable_shared_from_this<CkShelf> {
public:
    explicit CkShelf(size_t uiBytes) : m_uiBytes(uiBytes) {}
    ~CkShelf() override { freeAll(); }
    CkShelf(const CkShelf&) = delete;
    CkShelf& operator=(const CkShelf&) = delete;

    bool fill(int iCount) {
        m_free.reserve(size_t(iCount)); // takeBack must not allocate
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

    /// From now on pictures that come back are freed.
    void retire() {
        const std::lock_guard lock(m_mutex);
        m_bRetired = true;
        freeAll();
    }

    CkPicMemory* take() {
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
        memory->handOut(shared_from_this());
        return memory;
    }

    void takeBack(CkPicMemory* pMemory) override {
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
    std::shared_ptr<CkShelf> shelf(const void* pOwner) const {
        const std::lock_guard lock(m_mutex);
        const auto found = m_shelves.find(pOwner);
        return found == m_shelves.end() ? nullptr : found->second;
    }

    mutable std::mutex m_mutex;
    std::unordered_map<const void*, std::shared_ptr<CkShelf>> m_shelves;
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
        auto shelf = std::make_shared<CkShelf>(bytes);
        const bool filled = shelf->fill(iCount);
        // An empty shelf is kept, too: it counts the requests that it refuses.
        const std::lock_guard lock(m_d->m_mutex);
        m_d->m_shelves[pOwner] = std::move(shelf);
        return filled;
    } catch (const std::exception&) {
        return false;
    }
}

void CkMemoryPool::release(const void* pOwner) {
    std::shared_ptr<CkShelf> shelf;
    {
        const std::lock_guard lock(m_d->m_mutex);
        const auto found = m_d->m_shelves.find(pOwner);
        if (found == m_d->m_shelves.end()) {
            return;
        }
        shelf = std::move(found->second);
        m_d->m_shelves.erase(found);
    }
    shelf->retire();
}

void CkMemoryPool::releaseAll() {
    std::unordered_map<const void*, std::shared_ptr<CkShelf>> shelves;
    {
        const std::lock_guard lock(m_d->m_mutex);
        shelves.swap(m_d->m_shelves);
    }
    for (const auto& [owner, shelf] : shelves) {
        shelf->retire();
    }
}

bool CkMemoryPool::acquire(const void* pOwner, const SkPicBufInfo& info, SkPicBuf& picBuf, bool bClear) {
    // A copy, for the descriptor may be the one inside picBuf.
    const SkPicBufInfo wanted = info;
    CkPicBufAPI::FreePicBuf(picBuf, true);
    const std::shared_ptr<CkShelf> owned = m_d->shelf(pOwner);
    const size_t bytes = CkPicBufAPI::byteSize(wanted);
    if (!owned) {
        return false;
    }
    if (bytes == 0 || bytes != owned->bytes()) {
        owned->countMisfit();
        return false;
    }
    CkPicMemory* const memory = owned->take();
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
    const auto owned = m_d->shelf(pOwner);
    return owned ? owned->capacity() : 0;
}

int CkMemoryPool::freeCount(const void* pOwner) const {
    const auto owned = m_d->shelf(pOwner);
    return owned ? owned->freeCount() : 0;
}

quint64 CkMemoryPool::bytesPerPicture(const void* pOwner) const {
    const auto owned = m_d->shelf(pOwner);
    return owned ? owned->bytes() : 0;
}

CkMemoryPool::SkRefusals CkMemoryPool::refusals(const void* pOwner) const {
    const auto owned = m_d->shelf(pOwner);
    return owned ? owned->refusals() : SkRefusals();
}
