#include "host/core/CkChainPrivate.h"
#include "host/core/guarded.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageSource.h"
#include "zuCore/CkRTTI.h"

#include <QDomDocument>
#include <QDomElement>
#include <QHash>
#include <QSet>
#include <QStringList>
#include <algorithm>

namespace {

constexpr int formatVersion = 1;
/// No chain that somebody made comes near; the limit keeps a hostile file from using up memory and time.
constexpr size_t mostBlocks = 1000;
/// Each may hold a file and a thread of its own.
constexpr size_t mostSources = 100;

/// A block that was read but is in no chain yet.
struct SkReadBlock {
    std::unique_ptr<CkChainable> block;
    std::vector<size_t> feeders;
};

/// Reads the element of a chain into blocks, stopping at the first error.
class CkChainReader {
public:
    explicit CkChainReader(const CkChain::LoadProgress& progress) : m_progress(progress) {}
    bool read(const QDomElement& element);
    std::vector<SkReadBlock> takeBlocks() { return std::move(m_blocks); }
    QString error() const { return m_sError; }

private:
    bool fail(const QDomElement& element, const QString& sReason);
    bool countBlocks(const QDomElement& element);
    bool readBlock(const QDomElement& element);
    bool readSettings(const QDomElement& element, CkChainable& block);
    bool readFeeders(const QDomElement& element, SkReadBlock& read);

    const CkChain::LoadProgress& m_progress;
    qsizetype m_iAll = 0;
    size_t m_uiSources = 0;
    std::vector<SkReadBlock> m_blocks;
    QHash<QString, size_t> m_places; ///< by the file's identifiers
    QString m_sError;
};

bool CkChainReader::fail(const QDomElement& element, const QString& sReason) {
    QString place = CkChain::tr("Element \"%1\"").arg(element.tagName());
    if (element.tagName() == QLatin1String("block")) {
        place += CkChain::tr(" number %1").arg(m_blocks.size() + 1);
    }
    if (element.lineNumber() > 0) {
        place += CkChain::tr(" in line %1").arg(element.lineNumber());
    }
    m_sError = place + QStringLiteral(": ") + sReason;
    return false;
}

bool CkChainReader::read(const QDomElement& element) {
    if (element.isNull() || element.tagName() != QLatin1String("chain")) {
        return fail(element, CkChain::tr("this is no chain."));
    }
    bool isNumber = false;
    const int version = element.attribute(QStringLiteral("version")).toInt(&isNumber);
    if (!isNumber || version < 1 || version > formatVersion) {
        return fail(
            element,
            CkChain::tr("version \"%1\" is not known.").arg(element.attribute(QStringLiteral("version"))));
    }
    if (!countBlocks(element)) {
        return false;
    }
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        if (!readBlock(child)) {
            return false;
        }
        if (m_progress && !m_progress(qsizetype(m_blocks.size()), m_iAll)) {
            return fail(element, CkChain::tr("loading was called off."));
        }
    }
    return true;
}

bool CkChainReader::countBlocks(const QDomElement& element) {
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        if (child.tagName() != QLatin1String("block")) {
            return fail(child, CkChain::tr("only blocks are known here."));
        }
        if (size_t(++m_iAll) > mostBlocks) {
            return fail(element, CkChain::tr("the chain has more than %1 blocks.").arg(mostBlocks));
        }
    }
    return true;
}

bool CkChainReader::readBlock(const QDomElement& element) {
    const QString id = element.attribute(QStringLiteral("id"));
    if (id.isEmpty() || id.contains(QLatin1Char(' ')) || m_places.contains(id)) {
        return fail(element, CkChain::tr("identifier \"%1\" is empty, in use or not one word.").arg(id));
    }
    const QString className = element.attribute(QStringLiteral("class"));
    std::unique_ptr<QObject> object(CkRTTI::instance()->create(className));
    if (!object) {
        return fail(element, CkRTTI::instance()->lastError());
    }
    auto* const block = qobject_cast<CkChainable*>(object.get());
    if (block == nullptr) {
        return fail(element, CkChain::tr("class \"%1\" is no block of a chain.").arg(className));
    }
    SkReadBlock read;
    static_cast<void>(object.release()); // the same object, from here on held as a block
    read.block.reset(block);
    if (qobject_cast<CkImageSource*>(block) != nullptr && ++m_uiSources > mostSources) {
        return fail(element, CkChain::tr("the chain has more than %1 sources.").arg(mostSources));
    }
    if (!readFeeders(element, read) || !readSettings(element, *read.block)) {
        return false;
    }
    m_places.insert(id, m_blocks.size());
    m_blocks.push_back(std::move(read));
    return true;
}

bool CkChainReader::readSettings(const QDomElement& element, CkChainable& block) {
    if (guarded(false, [&] { return block.loadSettings(element); })) {
        return true;
    }
    const QString reason = block.errorMessage();
    return fail(element, reason.isEmpty() ? CkChain::tr("the settings of class \"%1\" cannot be read.")
                                                .arg(element.attribute(QStringLiteral("class")))
                                          : reason);
}

bool CkChainReader::readFeeders(const QDomElement& element, SkReadBlock& read) {
    // Feeders stand before those they feed; a circle cannot be written down.
    const QStringList ids =
        element.attribute(QStringLiteral("predecessors")).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    QSet<QString> seen;
    for (const QString& id : ids) {
        if (seen.contains(id)) {
            return fail(element, CkChain::tr("it names block \"%1\" twice.").arg(id));
        }
        seen.insert(id);
        const auto place = m_places.constFind(id);
        if (place == m_places.constEnd()) {
            return fail(element, CkChain::tr("there is no block \"%1\" before it.").arg(id));
        }
        CkChainable* const feeder = m_blocks[*place].block.get();
        if (!guarded(false, [&] { return read.block->acceptsDataFrom(feeder); })) {
            return fail(element, CkChain::tr("it does not accept the data of block \"%1\".").arg(id));
        }
        read.feeders.push_back(*place);
    }
    if (ids.isEmpty() && qobject_cast<CkImageSource*>(read.block.get()) == nullptr) {
        return fail(element, CkChain::tr("it is no source and has no predecessor."));
    }
    return true;
}

/// The blocks that frames of a source can reach: any other is one that could not be loaded again.
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

bool CkChain::save(QDomDocument& doc, QDomElement& element) const {
    const QString tag = QStringLiteral("chain");
    QDomElement target = element;
    if (target.isNull()) {
        element = target = doc.createElement(tag);
    } else if (target.tagName() != tag) {
        target = doc.createElement(tag);
        element.appendChild(target);
    }
    const std::lock_guard control(m_d->m_control);
    target.setAttribute(QStringLiteral("version"), formatVersion);
    const QList<CkChainable*> all = fedBlocks(*this);
    for (qsizetype i = 0; i < all.size(); ++i) {
        QDomElement block = doc.createElement(QStringLiteral("block"));
        if (!guarded(false, [&] { return all[i]->saveSettings(doc, block); })) {
            return false;
        }
        QStringList feeders;
        for (CkChainable* feeder : precedessors(all[i])) {
            if (const qsizetype place = all.indexOf(feeder); place >= 0) {
                feeders.append(QString::number(place));
            }
        }
        // Last: a block's own settings must not hide what the chain needs.
        block.setAttribute(QStringLiteral("class"), CkRTTI::uniqueId(all[i]->metaObject()));
        block.setAttribute(QStringLiteral("id"), QString::number(i));
        block.setAttribute(QStringLiteral("predecessors"), feeders.join(QLatin1Char(' ')));
        target.appendChild(block);
    }
    return true;
}

bool CkChain::load(const QDomElement& element, QString* psError) {
    return load(element, psError, LoadProgress());
}

bool CkChain::load(const QDomElement& element, QString* psError, const LoadProgress& progress) {
    const auto refuse = [psError](const QString& text) {
        if (psError != nullptr) {
            *psError = text;
        }
        return false;
    };
    CkChainReader reader(progress);
    const bool isChain = element.tagName() == QLatin1String("chain");
    const QDomElement child = isChain ? element : element.firstChildElement(QStringLiteral("chain"));
    if (!reader.read(child.isNull() ? element : child)) {
        return refuse(reader.error());
    }
    std::vector<SkReadBlock> read = reader.takeBlocks();
    {
        const std::lock_guard control(m_d->m_control);
        if (!stopped()) {
            return refuse(tr("The chain runs; stop it first."));
        }
        m_d->clear();
        std::vector<SkChainNode*> nodes;
        for (SkReadBlock& entry : read) {
            SkChainNode* const node = m_d->addNode(entry.block.release(), nullptr);
            for (const size_t feeder : entry.feeders) {
                const std::lock_guard lock(m_d->m_graph);
                CkPrivate::connectNodes(*nodes[feeder], *node);
            }
            nodes.push_back(node);
        }
    }
    emit structureChanged();
    emit sinksMoved();
    return true;
}
