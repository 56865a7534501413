#pragma once

#include "zuCore/IkChainData.h"
#include "zuCore/zuCoreGlobal.h"

#include <QList>
#include <QObject>
#include <QString>
#include <mutex>
#include <thread>

class CkChain;
class CkMemoryPool;
class QDomDocument;
class QDomElement;
class QWidget;

/// A block of a processing chain.
///
/// Life cycle: constructed and configured on the user-interface thread; inserted by CkChainManager into a
/// chain, which then owns it; setupStart, any number of processData on the chain's thread, setupStop. These
/// three are never called concurrently. Class information "CustomName" and "UniqueID" (Q_CLASSINFO) let the
/// registry list and re-create a block; such a class needs an invokable default constructor.
class ZUCORE_EXPORT CkChainable : public QObject {
    Q_OBJECT

public:
    /// Whether the block may produce output.
    enum EkState : int {
        Ready = 0,
        Blocked = 1, ///< switched off by the user; must not produce output
    };

    /// iBlockKind: kinds of the host's menus; 41 is an image processing block.
    explicit CkChainable(int iBlockKind = 0, QObject* pParent = nullptr);
    ~CkChainable() override;

    int blockKind() const { return m_iBlockKind; } ///< As given at construction.

    /// Short name for panels and window titles.
    virtual QString title() const;

    /// Whether the block can process the output of pUpstream; null asks whether it can be a first block. The
    /// base accepts any block, but cannot be a first one.
    virtual bool acceptsDataFrom(CkChainable* pUpstream);

    /// Pictures of its sub-pool that the block itself may hold at the same time. The chain adds those that
    /// views and branches may hold. The base returns 0: the block gets no sub-pool.
    virtual int buffersCountInMemoryPool() const;

    /// Called before the first and after the last frame of a run. Overrides call the base.
    virtual void setupStart();
    virtual void setupStop(); ///< See setupStart.

    /// Processes one frame; chain thread. Ownership of pData (may be null) passes to the block, unless it
    /// returns null. Result: the same object (passed through); a new one, after deleting pData; or null for
    /// no output. A block that returns null must not delete pData; the caller does.
    virtual IkChainData* processData(IkChainData* pData);

    /// Writes and reads the block's settings as attributes of its element in the chain's file. Overrides call
    /// the base first. The base stores whether the block is switched off.
    virtual bool saveSettings(QDomDocument& doc, QDomElement& element) const;
    virtual bool loadSettings(const QDomElement& element); ///< See saveSettings.

    virtual bool hasHelp() const; ///< Whether help has a text.
    /// Rich text for the user.
    virtual void help(QString& sText);

    /// A new widget to configure the block, owned by the caller; null when there is nothing to configure.
    virtual QWidget* configurationWidget();

    /// A new block with the same configuration, in no chain, owned by the caller; null when not cloneable.
    virtual CkChainable* clone();

    /// The chain that contains the block, or null. Any thread.
    CkChain* chain() const;

    /// The predecessors, in the order of connection; empty for sources and outside a chain. Any thread.
    QList<CkChainable*> precedessors() const;

    /// EkState. Any thread.
    int state() const;
    void setState(int iState); ///< EkState; emits stateChanged. Any thread.

    /// The text that the host shows on the block: the message set last or, if that is empty, the chain's
    /// message about the block; empty for no error. Any thread.
    QString errorMessage() const;
    /// Empty for no error; the chain's own message then shows again, if there is one. Setting a block up
    /// clears the text, unless the block is a source. Any thread.
    void setErrorMessage(const QString& sMessage);

    /// The chain's picture memory, in which the block is the owner of its own sub-pool; null outside a chain.
    CkMemoryPool* memoryPool() const;

signals:
    /// The result of errorMessage has changed; on the thread that changed it.
    void errorMessageChanged(const QString& sMessage);
    void stateChanged(int iState); ///< EkState; on the thread that changed it.
    /// Title or settings have changed.
    void configurationChanged();

protected:
    /// To be called within processData for a frame that yields no output although the block does not wait for
    /// further frames: it counts as dropped (CkChain::blockStatistics). The chain itself counts exceptions
    /// and frames for which the pool had no picture; no frame is counted twice.
    void reportDropped();

private:
    friend class CkChain;
    friend class CkChainGraph;
    friend class CkChainMessages;
    friend class CkChainRunner;

    void setChainMessage(const QString& sMessage);
    /// Changes of the messages between the two are signalled once, at the end, and only if the final message
    /// differs. Only the holding thread sees them earlier.
    void holdMessages();
    void releaseMessages();
    QString message() const; ///< with the lock
    void notifyMessage(std::unique_lock<std::mutex> lock);

    const int m_iBlockKind;
    mutable std::mutex m_mutex;
    CkChain* m_pChain = nullptr;
    int m_iState = Ready;
    QString m_sOwnMessage;
    QString m_sChainMessage;         ///< the host's, shown while the block's own is empty
    QString m_sSignalledMessage;     ///< of the last errorMessageChanged
    std::thread::id m_messageHolder; ///< none: every change is signalled at once
    bool m_bFrameDropped = false;    ///< chain thread
};
