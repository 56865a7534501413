#pragma once

#include "zuCore/CkChain.h"
#include "zuCore/CkChainable.h"

#include <QHash>
#include <QString>
#include <memory>
#include <vector>

class QDomElement;

/// A block that has been read but is not in a chain yet.
struct SkReadBlock {
    std::unique_ptr<CkChainable> block;
    std::vector<size_t> feeders; ///< indices of predecessors, in order of connection
};

/// Reads the XML element of a chain into blocks, up to the first error. User-interface thread.
class CkChainReader {
public:
    /// Keeps a reference to progress.
    explicit CkChainReader(const CkChain::LoadProgress& progress) : m_progress(progress) {}

    /// Reads the element, or its child "chain". To be called once.
    bool read(const QDomElement& element);
    std::vector<SkReadBlock> takeBlocks() { return std::move(m_blocks); } ///< Predecessors first.
    QString error() const { return m_error; }                             ///< What is wrong and where.

private:
    bool fail(const QDomElement& element, const QString& sReason);
    bool readChain(const QDomElement& element);
    bool countBlocks(const QDomElement& element);
    bool readBlock(const QDomElement& element);
    bool readSettings(const QDomElement& element, CkChainable& block);
    bool readFeeders(const QDomElement& element, SkReadBlock& read);

    const CkChain::LoadProgress& m_progress;
    qsizetype m_all = 0;
    size_t m_sources = 0;
    std::vector<SkReadBlock> m_blocks;
    QHash<QString, size_t> m_places; ///< index of a block by its identifier in the file
    QString m_error;
};
