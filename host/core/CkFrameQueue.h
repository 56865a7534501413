#pragma once

#include <QtGlobal>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <vector>

class CkImageData;
struct SkChainNode;

/// The queue in front of a chain's thread: frames, a few per source, and requests. Any thread.
class CkFrameQueue {
public:
    /// Capacity per source. With one frame, every delay of the thread would cost a frame; more than two only
    /// add latency.
    static constexpr int kFramesPerSource = 2;

    struct SkItem {
        SkChainNode* source = nullptr;
        CkImageData* frame = nullptr; ///< null: requests only
        bool renegotiate = false;
        bool growPools = false;
        bool stop = false;
    };

    ~CkFrameQueue();

    /// Drops the requests: the caller is about to set everything up, which covers them.
    void clearRequests();
    /// Starts accepting frames. Requests made since clearRequests are served before the first frame.
    void open();
    /// Wakes the thread, deletes the queued frames, counting them as dropped, and accepts nothing from then
    /// on. Returns the source of each frame it dropped.
    std::vector<SkChainNode*> close();

    /// Takes ownership of the frame. False, and the caller keeps the frame, when closed or full.
    bool put(SkChainNode& source, CkImageData* pFrame);
    void requestRenegotiation();
    void requestGrowth(); ///< of the pools

    /// Blocks until there is a frame or a request. The requests of an item are to be served before its frame.
    SkItem take();

private:
    std::vector<SkChainNode*> clear();

    std::mutex m_mutex;
    std::condition_variable m_filled;
    std::deque<SkItem> m_frames;
    bool m_open = false;
    bool m_renegotiate = false;
    bool m_grow = false;
};
