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

/// Receives the frames that leave a block. takeFrame must return quickly, because the chain waits: it
/// stores the frame for another thread.
class ZUCORE_EXPORT IkFrameSink {
public:
    virtual ~IkFrameSink();

    /// Chain thread. Takes ownership of pData. Returns how many frames, this one included, were dropped.
    virtual int takeFrame(CkImageData* pData) = 0;

    /// Pictures that the sink may hold at the same time, queued and shown.
    virtual int heldFrames() const { return 3; }
};

/// Counters of a block since the chain was last started. Times are wall-clock nanoseconds.
struct SkBlockStatistics {
    quint64 framesIn = 0;  ///< frames that reached the block
    quint64 framesOut = 0; ///< frames that left it
    /// Frames lost: before they reached their source (CkImageSource::reportLost), in a full queue, in the
    /// queue when the chain stopped, for lack of a free picture, because of a format that does not match, in
    /// a block that failed or reported the loss (CkChainable::reportDropped), or in a slow sink.
    quint64 dropped = 0;
    quint64 processNs = 0; ///< spent in processData
    /// Of the frames that left it, those that all blocks and sinks downstream have finished.
    quint64 framesDone = 0;
};

/// A graph of blocks and the thread that runs it.
///
/// Frames flow from the sources to the ends, one at a time, in the order of delivery. For each frame of a
/// source, a block receives one frame from each predecessor, in the order of connection; when it outputs
/// several frames for them, its sinks get all of them and its successors the last one. The structure is
/// changed through CkChainManager, the state by start and stop. Every function may be called from any thread
/// unless stated otherwise; control calls from several threads are serialised.
class ZUCORE_EXPORT CkChain : public QObject {
    Q_OBJECT

public:
    ~CkChain() override;

    /// Negotiates every block's format, reserves its pictures, calls setupStart from the sources down and
    /// starts the thread. A block that cannot negotiate shows its error and gets no pictures; one
    /// whose setupStart throws shows an error and receives no frames; the others run. False when the chain
    /// has no source or is already running. Not from the chain's own thread.
    bool start();

    /// Returns when no block is inside processData any more and every setupStop has been called. Frames in
    /// the queue, and those in flight between blocks, are dropped. No-op for a stopped chain. Not from the
    /// chain's own thread.
    void stop();

    bool started() const; ///< Between start and stop.
    bool stopped() const; ///< The chain's thread is not running.

    /// Makes a sequence such as stop, change, start atomic: other threads wait with start, stop and
    /// structural changes, while calls by the holding thread proceed.
    class ZUCORE_EXPORT CkControlLock {
    public:
        explicit CkControlLock(CkChain* pChain); ///< Waits for its turn.
        ~CkControlLock();
        CkControlLock(const CkControlLock&) = delete;
        CkControlLock& operator=(const CkControlLock&) = delete;

    private:
        CkChain* m_pChain;
    };

    /// Sources in the order of insertion.
    QList<CkChainable*> imageSources() const;
    /// All blocks, each after its predecessors.
    QList<CkChainable*> blocks() const;
    QList<CkChainable*> precedessors(const CkChainable* pBlock) const; ///< In order of connection.
    QList<CkChainable*> successors(const CkChainable* pBlock) const;   ///< Blocks that it feeds.

    /// "Source - Block - Block" along the path to pProvider, for window titles.
    QString chainTitle(const CkChainable* pProvider) const;

    CkMemoryPool* memoryPool() const; ///< Never null.

    /// From the next frame on, the sink receives an object of its own for every frame that leaves pBlock. A
    /// running chain enlarges the block's sub-pool. False when the block is not in the chain.
    bool addSink(CkChainable* pBlock, IkFrameSink* pSink);
    /// Returns when the sink is no longer inside takeFrame.
    void removeSink(IkFrameSink* pSink);
    /// The block whose frames the sink gets; changes when a block is inserted after it. Null when unknown.
    CkChainable* sinkBlock(const IkFrameSink* pSink) const;

    SkBlockStatistics blockStatistics(const CkChainable* pBlock) const; ///< Zeros for a foreign block.

    /// The format negotiated last for the block's output. False when there is none.
    bool negotiatedInfo(const CkChainable* pBlock, SkPicBufInfo& info, CkImageMetadata* pMetadata) const;

    /// Requests that every block is set up again before the next frame, as by stop and start, on the chain's
    /// thread. A block may call this from within processData; as long as no format changes, its requests are
    /// granted at increasing intervals.
    ///
    /// The chain does so by itself for a frame that leaves a source or a block in another format than the
    /// negotiated one, and then continues with that frame. Metadata that change from frame to frame (position
    /// in the set, angle, exposure, time) are not part of the format. If every frame has another format than
    /// the previous one, the chain adapts to every second one, reports that on the block, and drops frames
    /// that do not match. A difference in metadata alone drops no frames; the chain adapts to it at
    /// increasing intervals.
    void requestRenegotiation();

    /// The chain's blocks and connections as an XML element "chain", and back. save fills the element when it
    /// is a "chain", creates one when it is null, and otherwise appends one to it; load reads the element or
    /// its child "chain" and replaces the blocks of the chain (their sinks get no more frames). On failure
    /// the chain is unchanged and psError holds the reason and the position. User-interface thread.
    bool save(QDomDocument& doc, QDomElement& element) const;
    bool load(const QDomElement& element, QString* psError); ///< See save.

    /// Called after each block with the number of blocks read so far and in total; returning false cancels
    /// loading, and load fails. May run an event loop, but must not close the chain.
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
