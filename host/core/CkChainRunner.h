#pragma once

#include "host/core/CkChainMessages.h"
#include "host/core/CkChainSetUp.h"
#include "host/core/CkFrameQueue.h"
#include "host/core/CkRenegotiationThrottle.h"
#include "zuCore/CkImageSource.h"
#include "zuCore/CkMemoryPool.h"

#include <atomic>

enum class EkChainState { Stopped, Starting, Running, Stopping };

/// Processes frames through the blocks of a chain, one at a time. Chain thread, except for beginRun and
/// notifySource.
class CkChainRunner {
public:
    struct SkParts {
        CkChainGraph& graph;
        CkMemoryPool& pool;
        CkChainSetUp& setUp;
        CkFrameQueue& queue;
        const std::atomic<EkChainState>& state;
    };
    explicit CkChainRunner(const SkParts& parts) : m_parts(parts), m_messages(m_throttle) {}

    void beginRun() { m_throttle.reset(); } ///< Before the thread starts.

    /// Takes ownership of the frame.
    void runFrame(SkChainNode& source, CkImageData* pFrame);
    /// Sets the chain up again, on request of a block or of another thread.
    void renegotiate();
    /// A block requests renegotiation, on the chain's thread. False when it is not granted: requests that
    /// change no format are granted with increasing delays.
    bool requestRenegotiation();

    /// Passes an event to the source, whose exceptions are ignored.
    static void notifySource(const SkChainNode& source, CkImageSource::EkFrameEvent event);

private:
    void runBlock(SkChainNode& node);
    IkChainData* process(SkChainNode& node, IkChainData* pData);
    IkChainData* callBlock(SkChainNode& node, IkChainData* pData, bool& bOwnsInput);
    void countMissingOutput(SkChainNode& node, const CkMemoryPool::SkRefusals& before);
    /// The rule for every frame that leaves a source or a block: if its format differs from the negotiated
    /// one, the chain is set up again. False when the frame has to be dropped.
    bool fitsSetUp(SkChainNode& node, const IkChainData& data);
    /// Sets the chain up again when a block that refused its input at set-up accepts the format of a frame.
    void recoverBlock(SkChainNode& node, const IkChainData& data);
    static void passToSuccessors(SkChainNode& node, IkChainData* pData);

    const SkParts m_parts;
    CkRenegotiationThrottle m_throttle;
    const CkChainMessages m_messages;
};
