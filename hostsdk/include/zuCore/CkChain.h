#pragma once

#include "zuCore/zuCoreGlobal.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <functional>
#include <memory>

class CkChainable;
class CkImageData;
struct CkImageMetadata;
class CkImageSource;
class CkMemoryPool;
class QDomDocument;
class QDomElement;
struct SkPicBufInfo;

/// Takes the frames that leave a block. Implementations are quick: they keep the frame and return.
class ZUCORE_EXPORT IkFrameSink {
public:
    virtual ~IkFrameSink();

    /// Chain thread. Takes over pData. Returns how many frames it had to drop for this one.
    virtual int takeFrame(CkImageData* pData) = 0;

    /// Pictures that the sink may hold at once, waiting and shown.
    virtual int heldFrames() const { return 3; }
};

/// Counters of a block since the chain was last started. Times are wall-clock nanoseconds.
struct SkBlockStatistics {
    quint64 framesIn = 0;  ///< frames that came to the block
    quint64 framesOut = 0; ///< frames that left it
    /// Lost before they reached the chain of their source, in a full queue or one that stop emptied, for lack
    /// of a free picture, to a format that does not fit, a block that failed or reported it
    /// (CkChainable::noteDropped), or a slow sink.
    quint64 dropped = 0;
    quint64 processNs = 0; ///< spent in processData
    /// Of the frames that left it, those that all blocks and sinks downstream are done with.
    quint64 framesDone = 0;
};

/// A graph of blocks and the thread that runs it.
///
/// Frames run from the sources to the ends, one at a time, in the order of delivery. Of each frame of a
/// source a block is handed one of each predecessor, in the order of connection; when it makes several frames
/// of them, its sinks get them all and the blocks after it the last one. Structure and life are changed
/// through CkChainManager and start/stop. Every function may be called from any thread unless
/// it says otherwise; control calls of several threads are served one after the other.
class ZUCORE_EXPORT CkChain : public QObject {
    Q_OBJECT

public:
    ~CkChain() override;

    /// Negotiates every block's format, reserves its pictures, calls setupStart from the sources down and
    /// starts the thread. A block that cannot negotiate shows its error and is left without a pool; one whose
    /// setupStart throws shows that and is handed no frames; the rest runs. False when the chain has no
    /// source or runs already. Not from the chain's own thread.
    bool start();

    /// Returns when no block is inside processData any more and every setupStop has been called. Frames in
    /// the queue, and those on their way that no block works on, are dropped. Nothing happens for a stopped
    /// chain. Not from the chain's own thread.
    void stop();

    bool started() const; ///< Between start and stop.
    bool stopped() const; ///< No thread of the chain is at work.

    /// Holds off start, stop and structural changes by other threads; what the holding thread calls goes
    /// through. For "stop, change, start" as one step.
    class ZUCORE_EXPORT CkControlLock {
    public:
        explicit CkControlLock(CkChain* pChain); ///< Waits for its turn.
        ~CkControlLock();
        CkControlLock(const CkControlLock&) = delete;
        CkControlLock& operator=(const CkControlLock&) = delete;

    private:
        CkChain* m_pChain;
    };

    /// Sources in the order in which they were put into the chain.
    QList<CkChainable*> imageSources() const;
    /// All blocks, each after its predecessors.
    QList<CkChainable*> blocks() const;
    QList<CkChainable*> precedessors(const CkChainable* pBlock) const; ///< Feeders, in order of connection.
    QList<CkChainable*> successors(const CkChainable* pBlock) const;   ///< Blocks that it feeds.

    /// "Source - Block - Block" along the way to pProvider, for window titles.
    QString chainTitle(const CkChainable* pProvider) const;

    CkMemoryPool* memoryPool() const; ///< Never null.

    /// From the next frame on the sink gets its own object of every frame that leaves pBlock. A running
    /// chain makes room in the block's pool. False when the block is not in the chain.
    bool addSink(CkChainable* pBlock, IkFrameSink* pSink);
    /// Returns when the sink is no longer inside takeFrame.
    void removeSink(IkFrameSink* pSink);
    /// The block whose frames the sink gets; moves when a block is inserted after it. Null when unknown.
    CkChainable* sinkBlock(const IkFrameSink* pSink) const;

    SkBlockStatistics blockStatistics(const CkChainable* pBlock) const; ///< Zeros for a foreign block.

    /// The format negotiated last for the block's output. False when there is none.
    bool negotiatedInfo(const CkChainable* pBlock, SkPicBufInfo& info, CkImageMetadata* pMetadata) const;

    /// Before the next frame every block is set up anew, as by stop and start, on the chain's thread. A
    /// block may ask from within processData; while that changes no format its requests are served ever
    /// more rarely.
    ///
    /// The chain does so by itself for a frame that leaves a source or a block in another format than the
    /// negotiated one, and then continues with that frame. In metadata, what changes from frame to frame
    /// (place in the set, angle, exposure, time) is no format. Where every frame has another format than the
    /// one before, the chain follows every second one, shows that on the block, and drops what does not fit;
    /// other metadata alone drop nothing, and are followed ever more rarely.
    void requestRenegotiation();

    /// The chain's blocks and connections as an XML element "chain", and back. save fills the element when it
    /// is a "chain", makes one when it is null, and otherwise appends one to it; load reads the element or
    /// its child "chain" and replaces the blocks that the chain has (their sinks stay without frames).
    /// On failure the chain is left as it was and psError says what is wrong and where. User-interface
    /// thread.
    bool save(QDomDocument& doc, QDomElement& element) const;
    bool load(const QDomElement& element, QString* psError); ///< See save.

    /// Called after each block with how many of all blocks have been read; false as result cancels the
    /// loading, which then fails. May run an event loop, but not close the chain.
    using LoadProgress = std::function<bool(qsizetype iRead, qsizetype iAll)>;
    bool load(const QDomElement& element, QString* psError, const LoadProgress& progress); ///< See save.

signals:
    void runningChanged(bool bRunning); ///< After start, before stop returns.
    void structureChanged();            ///< Blocks or connections changed.
    /// After a sink was moved to another block by an insertion or removal.
    void sinksMoved();

private:
    friend class CkChainManager;
    friend class CkChainable;
    friend class CkImageProvider;
    friend class CkImageSource;

    explicit CkChain(QObject* pParent = nullptr);

    class CkPrivate;
    std::unique_ptr<CkPrivate> m_d;
};
