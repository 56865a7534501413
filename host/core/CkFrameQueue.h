#pragma once

#include <QtGlobal>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <vector>

class CkImageData;
struct SkChainNode;

/// What waits for a chain's thread: frames, a few per source, and wishes. Any thread.
class CkFrameQueue {
public:
    /// Frames of one source that may wait. One would lose frames to every hiccup of the thread; more only add
    /// latency.
    static constexpr int FramesPerSource = 2;

    struct SkItem {
        SkChainNode* source = nullptr;
        CkImageData* frame = nullptr; ///< null: nothing but wishes
        bool renegotiate = false;
        bool growPools = false;
        bool stop = false;
    };

    ~CkFrameQueue();

    /// Forgets what was asked for: whoever is about to set everything up serves that too.
    void forgetWishes();
    /// Lets frames in. What was asked for meanwhile is served first.
    void open();
    /// Ends the thread's waiting, deletes what waits, counting it as dropped, and lets nothing in any more.
    /// Answers the source of each frame it dropped.
    std::vector<SkChainNode*> close();

    /// Takes the frame over when it answers true. False: closed or full.
    bool put(SkChainNode& source, CkImageData* pFrame);
    void askForRenegotiation();
    void askForGrowth();

    /// Waits for something to do. Wishes come before the frame they are answered with.
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
