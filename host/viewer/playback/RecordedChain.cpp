#include "host/viewer/playback/RecordedChain.h"

#include "host/recording/CkVideoSource.h"
#include "host/viewer/base/ViewerVersion.h"
#include "host/viewer/picture/ViewAppearance.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkRTTI.h"
#include "zuCore/CkXmlReader.h"

#include <QCoreApplication>
#include <QSet>

#include <algorithm>

namespace {

// Marks the block whose output was recorded.
const QString kRecorded = QStringLiteral("recorded");
const QString kId = QStringLiteral("id");
const QString kPredecessors = QStringLiteral("predecessors");

QStringList predecessorsOf(const QDomElement& block) {
    return block.attribute(kPredecessors).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

QList<QDomElement> blocksOf(const QDomElement& chain) {
    QList<QDomElement> blocks;
    for (QDomElement block = chain.firstChildElement(); !block.isNull(); block = block.nextSiblingElement()) {
        blocks.append(block);
    }
    return blocks;
}

/// The marked block; without a mark, as in recordings by other programs, the first source.
QDomElement recordedBlock(const QDomElement& chain) {
    QDomElement recorded;
    for (const QDomElement& block : blocksOf(chain)) {
        if (block.hasAttribute(kRecorded)) {
            return block;
        }
        if (recorded.isNull() && predecessorsOf(block).isEmpty()) {
            recorded = block;
        }
    }
    return recorded;
}

/// Removes every block that has a predecessor outside the recorded block's descendants, because a recording
/// cannot feed it. False when only the recorded block remains.
bool removeBlocksNotFedBy(const QDomElement& recorded, QDomElement& chain) {
    QSet<QString> kept = {recorded.attribute(kId)};
    for (const QDomElement& block : blocksOf(chain)) {
        const QStringList feeders = predecessorsOf(block);
        const bool fed =
            !feeders.isEmpty() && std::all_of(feeders.begin(), feeders.end(),
                                              [&](const QString& feeder) { return kept.contains(feeder); });
        if (fed) {
            kept.insert(block.attribute(kId));
        } else if (block != recorded) {
            chain.removeChild(block);
        }
    }
    return kept.size() > 1;
}

} // namespace

SkRecordingInfo RecordedChain::describe(const CkChainable* pBlock, const CkMdiView* pView) {
    SkRecordingInfo info;
    info.software = ViewerVersion::text();
    info.viewSettings = ViewAppearance::colours(pView);
    const CkChain* chain = pBlock != nullptr ? pBlock->chain() : nullptr;
    QDomDocument doc;
    QDomElement element;
    if (chain != nullptr && chain->save(doc, element)) {
        const auto place = chain->blocks().indexOf(const_cast<CkChainable*>(pBlock));
        QList<QDomElement> blocks = blocksOf(element);
        if (place >= 0 && place < blocks.size()) {
            blocks[place].setAttribute(kRecorded, 1);
        }
        doc.appendChild(element);
        info.chainXml = doc.toString(-1);
    }
    return info;
}

QDomDocument RecordedChain::forPlayback(const SkRecordingInfo& info, const QDomElement& sourceSettings,
                                        QString& sError) {
    if (info.chainXml.isEmpty()) {
        return {};
    }
    QDomDocument doc;
    QString reason = QCoreApplication::translate("RecordedChain", "it is no chain");
    if (!CkXmlReader::read(info.chainXml, doc, reason) ||
        doc.documentElement().tagName() != QLatin1String("chain")) {
        sError =
            QCoreApplication::translate("RecordedChain", "The chain in the recording cannot be read: %1.")
                .arg(reason);
        return {};
    }
    QDomElement chain = doc.documentElement();
    const QDomElement recorded = recordedBlock(chain);
    if (recorded.isNull() || !removeBlocksNotFedBy(recorded, chain)) {
        return {};
    }
    QDomElement source = doc.importNode(sourceSettings, true).toElement();
    source.setTagName(QStringLiteral("block"));
    source.setAttribute(QStringLiteral("class"), CkRTTI::uniqueId(&CkVideoSource::staticMetaObject));
    source.setAttribute(kId, recorded.attribute(kId));
    source.setAttribute(kPredecessors, QString());
    chain.replaceChild(source, recorded);
    // A chain lists predecessors first.
    chain.insertBefore(source, chain.firstChild());
    return doc;
}

QStringList RecordedChain::blockTitles(const QDomDocument& chain) {
    QStringList titles;
    const QList<QDomElement> blocks = blocksOf(chain.documentElement());
    for (const QDomElement& block : blocks.mid(1)) {
        const QString name = block.attribute(QStringLiteral("class"));
        QString title = name;
        for (const SkRegisteredClass& known : CkRTTI::instance()->classes()) {
            if (known.uniqueId == name) {
                title = known.customName;
            }
        }
        titles.append(title);
    }
    return titles;
}
