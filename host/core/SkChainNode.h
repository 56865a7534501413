#pragma once

#include "host/core/SkFormat.h"

#include <QString>
#include <atomic>
#include <vector>

class CkChainable;
class CkImageProvider;
class CkImageSource;
class IkChainData;
class IkFrameSink;
struct SkChainNode;

/// A sink on the block it is connected to.
struct SkSinkEntry {
    IkFrameSink* sink = nullptr;
    int heldFrames = 0; ///< as the sink declared when it was connected
    quint64 serial = 0; ///< rises with every connection, so that a walk can resume after the list changed
};

/// A connection, stored with the predecessor.
struct SkChainOutput {
    SkChainNode* to = nullptr;
    size_t inboxIndex = 0; ///< in the inbox of the successor, which is in the order of its predecessors
};

/// A block of a chain with its connections and its state.
///
/// Lists and formats that other threads read are written with the graph's lock. Members marked "chain thread"
/// are used by the thread that runs the chain, or by start and stop while it does not run.
struct SkChainNode {
    SkChainNode(CkChainable* pBlock, quint64 uiSerial);

    CkChainable* const block;
    CkImageProvider* const provider; ///< the block, or null
    CkImageSource* const source;     ///< the block, or null
    const quint64 serial;            ///< rises with every block of the chain
    std::vector<SkChainNode*> predecessors;
    std::vector<SkChainNode*> successors;
    std::vector<SkSinkEntry> sinks;

    // Of the current run.
    size_t index = 0;                   ///< in the order of the run
    std::vector<SkChainOutput> outputs; ///< in that order
    std::vector<IkChainData*> inbox;    ///< one entry per predecessor; chain thread
    int pictures = 0;                   ///< that the block requests; negative when the query failed
    bool negotiated = false;            ///< false for a block that refused its input
    bool ready = false;                 ///< false for a block that could not be set up
    quint64 refitFrame = 0;             ///< frame of the last set-up for this block; chain thread
    QString setUpText;                  ///< the chain's message about setting it up
    QString problemText;                ///< the chain's message about its frames
    quint64 problemFrame = 0;           ///< last frame that caused it, 0: none

    SkFormat output;    ///< the negotiated format
    SkFormat announced; ///< what the block itself announced during negotiation
    SkFormat lastFrame; ///< of the last frame whose format differed; chain thread
    int queued = 0;     ///< frames of a source in the queue; guarded by the queue

    std::atomic<quint64> framesIn = 0;
    std::atomic<quint64> framesOut = 0;
    std::atomic<quint64> framesDone = 0;
    std::atomic<quint64> dropped = 0;
    std::atomic<quint64> processNs = 0;
};
