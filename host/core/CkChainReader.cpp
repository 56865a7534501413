#include "host/core/CkChainReader.h"

#include "host/core/chainWriter.h"
#include "host/core/guardedCall.h"
#include "zuCore/CkImageSource.h"
#include "zuCore/CkRTTI.h"

#include <QDomElement>
#include <QSet>
#include <QStringList>

namespace {

/// Far above any useful chain; keeps a hostile file from exhausting memory and time.
constexpr size_t kMaximumBlocks = 1000;
/// Each may own a file and a thread.
constexpr size_t kMaximumSources = 100;

} // namespace

bool CkChainReader::fail(const QDomElement& element, const QString& sReason) {
    QString place = CkChain::tr("Element \"%1\"").arg(element.tagName());
    if (element.tagName() == QLatin1String("block")) {
        place += CkChain::tr(" number %1").arg(m_blocks.size() + 1);
    }
    if (element.lineNumber() > 0) {
        place += CkChain::tr(" in line %1").arg(element.lineNumber());
    }
    m_error = place + QStringLiteral(": ") + sReason;
    return false;
}

bool CkChainReader::read(const QDomElement& element) {
    const bool isChain = element.tagName() == QLatin1String("chain");
    const QDomElement child = isChain ? element : element.firstChildElement(QStringLiteral("chain"));
    return readChain(child.isNull() ? element : child);
}

bool CkChainReader::readChain(const QDomElement& element) {
    if (element.isNull() || element.tagName() != QLatin1String("chain")) {
        return fail(element, CkChain::tr("this is no chain."));
    }
    bool isNumber = false;
    const int version = element.attribute(QStringLiteral("version")).toInt(&isNumber);
    if (!isNumber || version < 1 || version > kChainFormatVersion) {
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
        if (m_progress && !m_progress(qsizetype(m_blocks.size()), m_all)) {
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
        if (size_t(++m_all) > kMaximumBlocks) {
            return fail(element, CkChain::tr("the chain has more than %1 blocks.").arg(kMaximumBlocks));
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
    static_cast<void>(object.release()); // same object, owned as a block from here on
    read.block.reset(block);
    if (qobject_cast<CkImageSource*>(block) != nullptr && ++m_sources > kMaximumSources) {
        return fail(element, CkChain::tr("the chain has more than %1 sources.").arg(kMaximumSources));
    }
    if (!readFeeders(element, read) || !readSettings(element, *read.block)) {
        return false;
    }
    m_places.insert(id, m_blocks.size());
    m_blocks.push_back(std::move(read));
    return true;
}

bool CkChainReader::readSettings(const QDomElement& element, CkChainable& block) {
    if (guardedCall(false, [&] { return block.loadSettings(element); })) {
        return true;
    }
    const QString reason = block.errorMessage();
    return fail(element, reason.isEmpty() ? CkChain::tr("the settings of class \"%1\" cannot be read.")
                                                .arg(element.attribute(QStringLiteral("class")))
                                          : reason);
}

bool CkChainReader::readFeeders(const QDomElement& element, SkReadBlock& read) {
    // Only blocks that have been read already can be referenced, so that no file can describe a cycle.
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
        if (!guardedCall(false, [&] { return read.block->acceptsDataFrom(feeder); })) {
            return fail(element, CkChain::tr("it does not accept the data of block \"%1\".").arg(id));
        }
        read.feeders.push_back(*place);
    }
    if (ids.isEmpty() && qobject_cast<CkImageSource*>(read.block.get()) == nullptr) {
        return fail(element, CkChain::tr("it is no source and has no predecessor."));
    }
    return true;
}
