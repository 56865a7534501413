#include "host/core/CkFrameQueue.h"

#include "host/core/SkChainNode.h"
#include "zuCore/CkImageData.h"

#include <utility>

CkFrameQueue::~CkFrameQueue() {
    clear();
}

std::vector<SkChainNode*> CkFrameQueue::clear() {
    std::vector<SkChainNode*> sources;
    for (const SkItem& item : m_frames) {
        delete item.frame;
        item.source->queued = 0;
        ++item.source->dropped;
        sources.push_back(item.source);
    }
    m_frames.clear();
    return sources;
}

void CkFrameQueue::clearRequests() {
    const std::lock_guard lock(m_mutex);
    m_renegotiate = false;
    m_grow = false;
}

void CkFrameQueue::open() {
    const std::lock_guard lock(m_mutex);
    clear();
    m_open = true;
}

std::vector<SkChainNode*> CkFrameQueue::close() {
    const std::lock_guard lock(m_mutex);
    m_open = false;
    m_filled.notify_all();
    return clear();
}

bool CkFrameQueue::put(SkChainNode& source, CkImageData* pFrame) {
    const std::lock_guard lock(m_mutex);
    if (!m_open || source.queued >= kFramesPerSource) {
        return false;
    }
    m_frames.push_back({&source, pFrame, false, false, false});
    ++source.queued;
    m_filled.notify_one();
    return true;
}

void CkFrameQueue::requestRenegotiation() {
    const std::lock_guard lock(m_mutex);
    m_renegotiate = true;
    m_filled.notify_one();
}

void CkFrameQueue::requestGrowth() {
    const std::lock_guard lock(m_mutex);
    m_grow = true;
    m_filled.notify_one();
}

CkFrameQueue::SkItem CkFrameQueue::take() {
    std::unique_lock lock(m_mutex);
    m_filled.wait(lock, [this] { return !m_open || m_renegotiate || m_grow || !m_frames.empty(); });
    SkItem item;
    item.stop = !m_open;
    if (item.stop) {
        return item;
    }
    if (!m_frames.empty()) {
        item = m_frames.front();
        m_frames.pop_front();
        --item.source->queued;
    }
    item.renegotiate = std::exchange(m_renegotiate, false);
    item.growPools = std::exchange(m_grow, false);
    return item;
}
