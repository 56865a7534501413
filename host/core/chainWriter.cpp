#include "host/core/chainWriter.h"

#include "host/core/guardedCall.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageSource.h"
#include "zuCore/CkRTTI.h"

#include <QDomDocument>
#include <QDomElement>
#include <QSet>
#include <QStringList>
#include <algorithm>

namespace {

/// The blocks that frames of a source can reach. Other blocks could not be loaded again.
QList<CkChainable*> fedBlocks(const CkChain& chain) {
    QList<CkChainable*> fed;
    QSet<CkChainable*> known;
    for (CkChainable* block : chain.blocks()) {
        const QList<CkChainable*> feeders = chain.precedessors(block);
        const bool reached = std::any_of(feeders.begin(), feeders.end(),
                                         [&known](CkChainable* feeder) { return known.contains(feeder); });
        if (reached || qobject_cast<CkImageSource*>(block) != nullptr) {
            known.insert(block);
            fed.append(block);
        }
    }
    return fed;
}

} // namespace

bool writeChain(const CkChain& chain, QDomDocument& doc, QDomElement& element) {
    const QString tag = QStringLiteral("chain");
    QDomElement target = element;
    if (target.isNull()) {
        element = target = doc.createElement(tag);
    } else if (target.tagName() != tag) {
        target = doc.createElement(tag);
        element.appendChild(target);
    }
    target.setAttribute(QStringLiteral("version"), kChainFormatVersion);
    const QList<CkChainable*> all = fedBlocks(chain);
    for (qsizetype i = 0; i < all.size(); ++i) {
        QDomElement block = doc.createElement(QStringLiteral("block"));
        if (!guardedCall(false, [&] { return all[i]->saveSettings(doc, block); })) {
            return false;
        }
        QStringList feeders;
        for (CkChainable* feeder : chain.precedessors(all[i])) {
            if (const qsizetype place = all.indexOf(feeder); place >= 0) {
                feeders.append(QString::number(place));
            }
        }
        // Written last, so that no setting of a block can replace them.
        block.setAttribute(QStringLiteral("class"), CkRTTI::uniqueId(all[i]->metaObject()));
        block.setAttribute(QStringLiteral("id"), QString::number(i));
        block.setAttribute(QStringLiteral("predecessors"), feeders.join(QLatin1Char(' ')));
        target.appendChild(block);
    }
    return true;
}
