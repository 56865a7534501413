#include "host/viewer/panels/chain/ChainEditor.h"

#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageSource.h"
#include "zuCore/CkRTTI.h"

#include <QCoreApplication>
#include <QPointer>

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(ChainEditor)
};

template <class Change>
bool changeStopped(CkChain* chain, Change change) {
    const QPointer<CkChain> alive(chain);
    const bool running = chain->started();
    if (running) {
        chain->stop();
    }
    const bool done = change();
    if (running && alive) {
        alive->start();
    }
    return done;
}

using Operation = bool (CkChainManager::*)(CkChain*, CkChainable*, CkChainable*);

bool add(Operation operation, CkChainable* block, CkChainable* after, QString& error) {
    CkChain* chain = after != nullptr ? after->chain() : nullptr;
    if (chain == nullptr) {
        error = Texts::tr("The selected block is no longer in a chain.");
        delete block;
        return false;
    }
    const QString title = block->title();
    const bool done =
        changeStopped(chain, [&] { return (CkChainManager::instance()->*operation)(chain, block, after); });
    if (!done) {
        error = Texts::tr("\"%1\" cannot work on the output of \"%2\", or the blocks after it cannot process "
                          "its output.")
                    .arg(title, after->title());
        CkChainManager::instance()->deleteChainable(block);
    }
    return done;
}

} // namespace

CkChainable* ChainEditor::createBlock(const QString& sUniqueId, QString& sError) {
    QObject* object = CkRTTI::instance()->create(sUniqueId);
    auto* block = qobject_cast<CkChainable*>(object);
    if (block == nullptr) {
        sError = object != nullptr ? Texts::tr("\"%1\" is no processing block.").arg(sUniqueId)
                                   : CkRTTI::instance()->lastError();
        delete object;
    }
    return block;
}

bool ChainEditor::insertAfter(CkChainable* pBlock, CkChainable* pAfter, QString& sError) {
    return add(&CkChainManager::insertAfter, pBlock, pAfter, sError);
}

bool ChainEditor::branchAfter(CkChainable* pBlock, CkChainable* pAfter, QString& sError) {
    return add(&CkChainManager::branchAfter, pBlock, pAfter, sError);
}

bool ChainEditor::remove(CkChainable* pBlock, QString& sError) {
    CkChain* chain = pBlock->chain();
    if (chain == nullptr || isSource(pBlock)) {
        sError = Texts::tr("A source cannot be taken out of its chain; close the chain's views instead.");
        return false;
    }
    const QString title = pBlock->title();
    const bool done = changeStopped(chain, [&] {
        CkChain* owner = chain;
        return CkChainManager::instance()->remove(owner, pBlock, false);
    });
    if (!done) {
        sError =
            Texts::tr("\"%1\" cannot be removed: the blocks after it cannot work without it.").arg(title);
    }
    return done;
}

bool ChainEditor::isSource(const CkChainable* pBlock) {
    return qobject_cast<const CkImageSource*>(pBlock) != nullptr;
}
