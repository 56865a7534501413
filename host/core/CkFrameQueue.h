#pragma once

#include <QtGlobal>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <vector>

class CkImageData;
struct SkChainNode;

/// What waits for a chain's thread: frames, a few per source, and requests. Any thread.
class CkFrameQueue {
public:
    /// Frames of one source that may wait. With one, every delay of the thread would cost a frame; more than
    /// two only add latency.
    static constexpr int kFramesPerSource = 2;

    struct SkItem {
        SkChainNode* source = nullptr;
        CkImageData* frame = nullptr; ///< null: requests only
        bool renegotiate = false;
        bool growPools = false;
        bool stop = false;
    };

    ~CkFrameQueue();

    /// Drops the requests: the caller is about to set everything up, which serves them too.
    void clearRequests();
    /// Lets frames in. Requests made since clearRequests are served before the first one.
    void open();
    /// Ends the thread's waiting, deletes what waits, counting it as dropped, and lets nothing in any more.
    /// Returns the source of each frame it dropped.
    std::vector<SkChainNode*> close();

    /// Takes the frame over. False, and the frame stays the caller's, when closed or full.
    bool put(SkChainNode& source, CkImageData* pFrame);
    void requestRenegotiation();
    void requestGrowth(); ///< of the pools

    /// Waits for something to do. The requests of an item are to be served before its frame.
    SkItem take();

private:
    std::vector<SkChainNode*> clear();

    std::mutex m_mutex;
    std::condition_variable m_filled;
    std::deque<SkItem> m_frames;
    bool m_bOpen = false;
    bool m_bRenegotiate = false;
    bool m_bGrow = false;
};
