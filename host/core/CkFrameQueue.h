#pragma once

#include <QtGlobal>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <vector>

class CkImageData;
struct SkChainNode;

/// The bounded queue that feeds a chain's thread: frames of all sources, and pending requests. Any thread.
class CkFrameQueue {
public:
    /// Capacity per source. With one, every delay of the chain's thread would drop a frame; more than two
    /// only add latency.
    static constexpr int kFramesPerSource = 2;

    /// The next work for the chain's thread.
    struct SkItem {
        SkChainNode* source = nullptr; ///< of the frame
        CkImageData* frame = nullptr;  ///< owned by the receiver of the item; null: requests only
        bool renegotiate = false;      ///< set up the chain again before the frame
        bool growPools = false;        ///< enlarge the sub-pools before the frame
        bool stop = false;             ///< the queue is closed; there is no frame
    };

    ~CkFrameQueue();

    /// Discards pending requests, for a caller that is about to set up the whole chain.
    void clearRequests();
    /// Starts accepting frames. Requests made since clearRequests are served before the first frame.
    void open();
    /// Accepts no more frames, drops and counts the queued ones, and wakes the thread. Returns the source of
    /// each dropped frame.
    std::vector<SkChainNode*> close();

    /// Takes ownership of the frame. False, and the caller keeps the frame, when closed or full.
    bool put(SkChainNode& source, CkImageData* pFrame);
    void requestRenegotiation();
    void requestGrowth(); ///< of the pools

    /// Blocks until there is a frame or a request, or the queue is closed.
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
